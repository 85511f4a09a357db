// Weak definitions of all entry points. They do nothing and return success. The definitions in paced_library.cpp
// replace them.

#include "trackers/eyetech/sdk/quicklink2.h"

template <typename... Arguments>
static int success(Arguments... /*arguments*/) {
    return 0;
}

#define OCELA_EXPORT(name, parameters, arguments)          \
    extern "C" __attribute__((weak)) int name parameters { \
        return success arguments;                          \
    }
OCELA_QUICKLINK2_FUNCTIONS(OCELA_EXPORT)
