#include "asee/tracker.h"

// The library's entry points: each one is the operation of the same name of the only tracker.
#define OCELA_EXPORT(name, parameters, arguments)                 \
    extern "C" int name parameters {                              \
        return sim::asee_pro::Tracker::instance().name arguments; \
    }
OCELA_ASEE_FUNCTIONS(OCELA_EXPORT)
