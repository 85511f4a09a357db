#include "trackers/eyetech/eyetech_library.h"

#include "toolkit/platform/vendor_call_log.h"
#include "trackers/eyetech/eyetech_log.h"

namespace {

enum EntryPoint : std::size_t {
#define OCELA_INDEX(name, parameters, arguments) index_##name,
    OCELA_QUICKLINK2_FUNCTIONS(OCELA_INDEX)
#undef OCELA_INDEX
};

constexpr const char *entryPoints[] = {
#define OCELA_NAME(name, parameters, arguments) #name,
    OCELA_QUICKLINK2_FUNCTIONS(OCELA_NAME)
#undef OCELA_NAME
};
static_assert(std::size(entryPoints) == 71);

void stopAllDevices() {
    quicklink2::QLDevice_Stop_All();
}

VendorLibrary &quickLink2() {
    // Never destroyed: a call for a frame may block until the process ends.
    static auto &library =
        *new VendorLibrary("QuickLink2", {std::begin(entryPoints), std::end(entryPoints)}, stopAllDevices);
    return library;
}

VendorCallLog &callLog() {
    // Never destroyed, like the library.
    static auto &log = *new VendorCallLog(lcEyetech, {std::begin(entryPoints), std::end(entryPoints)},
                                          {{quicklink2::badArgument, "bad argument"},
                                           {quicklink2::unknownCalibration, "unknown calibration"},
                                           {quicklink2::bufferTooSmall, "the buffer is too small"}});
    return log;
}

bool load(VendorLibrary &library) {
    if (library.load())
        return true;
    library.error()->log(lcEyetech(), "EyeTech trackers cannot be used");
    return false;
}

}  // namespace

#define OCELA_FORWARD(name, parameters, arguments)                                         \
    int quicklink2::name parameters {                                                      \
        const auto function = quickLink2().function<int(*) parameters>(index_##name);      \
        return function ? callLog().checked(index_##name, function arguments) : notLoaded; \
    }
OCELA_QUICKLINK2_FUNCTIONS(OCELA_FORWARD)
#undef OCELA_FORWARD

bool eyetech::loadQuickLink2(const QString &path) {
    quickLink2().unload();
    if (VendorLibrary libraryAtPath(path, {}); !path.isEmpty() && !load(libraryAtPath))
        return false;
    return load(quickLink2());
}

int eyetech::deviceStatus(int device) {
    constexpr int unknown = 0;
    int status = unknown;
    return quicklink2::QLDevice_GetStatus(device, &status) == 0 ? status : unknown;
}

const std::optional<VendorLibrary::Error> &eyetech::libraryError() {
    return quickLink2().error();
}
