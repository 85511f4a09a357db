#include "asee/tracker.h"

// Each entry point calls the tracker's function of the same name.
#define OCELA_EXPORT(name, parameters, arguments)                 \
    extern "C" int name parameters {                              \
        return sim::asee_pro::Tracker::instance().name arguments; \
    }
OCELA_ASEE_FUNCTIONS(OCELA_EXPORT)
