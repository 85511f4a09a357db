#include "eyetech/library.h"

// Each entry point calls the function of the same name.
#define OCELA_EXPORT(name, parameters, arguments)                \
    extern "C" int name parameters {                             \
        return sim::eyetech::Library::instance().name arguments; \
    }
OCELA_QUICKLINK2_FUNCTIONS(OCELA_EXPORT)
