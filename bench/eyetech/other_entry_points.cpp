// The entry points that paced_library.cpp leaves out. They do nothing, and successfully; where both files define one,
// the linker takes the other.

#include "trackers/eyetech/quicklink2.h"

template <typename... Arguments>
static int nothing(Arguments... /*arguments*/) {
    return 0;
}

#define OCELA_EXPORT(name, parameters, arguments)          \
    extern "C" __attribute__((weak)) int name parameters { \
        return nothing arguments;                          \
    }
OCELA_QUICKLINK2_FUNCTIONS(OCELA_EXPORT)
