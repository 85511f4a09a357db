#include "trackers/asee/asee_library.h"

#include "toolkit/platform/vendor_call_log.h"
#include "trackers/asee/asee_log.h"

namespace {

enum EntryPoint : std::size_t {
#define OCELA_INDEX(name, parameters, arguments) index_##name,
    OCELA_ASEE_FUNCTIONS(OCELA_INDEX)
#undef OCELA_INDEX
};

constexpr const char *entryPoints[] = {
#define OCELA_NAME(name, parameters, arguments) #name,
    OCELA_ASEE_FUNCTIONS(OCELA_NAME)
#undef OCELA_NAME
};

VendorLibrary *load() {
    // Never destroyed: the library's threads and the calibration worker may run until the process ends.
    auto *library = new VendorLibrary("aSeeX", {std::begin(entryPoints), std::end(entryPoints)});
    if (!library->load())
        library->error()->log(lcAsee(), "aSee Pro trackers cannot be used");
    return library;
}

VendorCallLog &callLog() {
    // Never destroyed, like the library. The vendor's error codes are not known.
    static auto &log = *new VendorCallLog(lcAsee, {std::begin(entryPoints), std::end(entryPoints)});
    return log;
}

const VendorLibrary &library() {
    static const VendorLibrary *const loaded = load();
    return *loaded;
}

}  // namespace

#define OCELA_FORWARD(name, parameters, arguments)                                                \
    int asee_sdk::name parameters {                                                               \
        const auto entryPoint = library().function<int(*) parameters>(index_##name);              \
        return entryPoint ? callLog().checked(index_##name, entryPoint arguments) : notAvailable; \
    }
OCELA_ASEE_FUNCTIONS(OCELA_FORWARD)
#undef OCELA_FORWARD

const std::optional<VendorLibrary::Error> &asee::libraryError() {
    return library().error();
}
