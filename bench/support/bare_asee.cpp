#include "support/bare_asee.h"

namespace {

void store(asee_sdk::ImageCallback callback, void *context) {
    bench::bareAsee().image = callback;
    bench::bareAsee().imageContext = context;
}

void store(asee_sdk::GazeCallback callback, void *context) {
    bench::bareAsee().gaze = callback;
    bench::bareAsee().gazeContext = context;
}

template <typename... Arguments>
void store(Arguments...) {}

}  // namespace

bench::BareAsee &bench::bareAsee() {
    static BareAsee library;
    return library;
}

#define OCELA_EXPORT(name, parameters, arguments) \
    extern "C" int name parameters;               \
    extern "C" int name parameters {              \
        store arguments;                          \
        return 0;                                 \
    }
OCELA_ASEE_FUNCTIONS(OCELA_EXPORT)
