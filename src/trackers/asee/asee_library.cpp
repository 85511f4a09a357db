#include "trackers/asee/asee_library.h"

#include "toolkit/platform/vendor_call_log.h"
#include "trackers/asee/asee_log.h"

#include <atomic>
#include <iterator>
#include <list>
#include <mutex>
#include <string_view>

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

/// The name and the purpose of each entry point, for the log. The meanings of the vendor's error codes are not known.
constexpr const char *loggedNames[] = {
    "_7i_device_connect (open the device)",
    "_7i_set_image_callback (receive camera images)",
    "_7i_set_gaze_callback (receive gaze records)",
    "_7i_start (start the device)",
    "_7i_start_tracking (start the gaze, with the coefficients of a calibration)",
    "_7i_stop (stop the device)",
    "_7i_set_calibration_mode (prepare a calibration)",
    "_7i_start_calibration (start a calibration)",
    "_7i_start_calibration_point (measure a calibration point)",
    "_7i_cancel_calibration (cancel a calibration)",
    "_7i_compute_calibration (compute the coefficients of a calibration)",
    "_7i_complete_calibration (end a calibration)",
    "_7i_get_calibration_score (read the scores of a calibration)",
};

constexpr bool sameOrder() {
    for (std::size_t i = 0; i < std::size(entryPoints); ++i) {
        const std::string_view logged(loggedNames[i]);
        if (logged.substr(0, logged.find(' ')) != entryPoints[i])
            return false;
    }
    return true;
}
static_assert(std::size(loggedNames) == std::size(entryPoints) && sameOrder());

/// Stores the attempts to load the library. Only the last attempt can have succeeded. They are never destroyed, because
/// the library's threads and the calibration worker may run until the process ends.
class Loader {
public:
    Loader() { load(); }

    [[nodiscard]] const VendorLibrary &current() const { return *current_; }

    /// Loads the library, unless it is loaded.
    void load() {
        const std::lock_guard<std::mutex> lock(mutex_);
        if (current_ != nullptr && !current().error())
            return;
        VendorLibrary &next =
            attempts_.emplace_back("aSeeX", std::vector(std::begin(entryPoints), std::end(entryPoints)));
        if (!next.load())
            next.error()->log(lcAsee(), "aSee Pro trackers cannot be used");
        current_ = &next;
    }

private:
    std::mutex mutex_;  // guards the attempts
    std::list<VendorLibrary> attempts_;
    std::atomic<const VendorLibrary *> current_{nullptr};
};

Loader &loader() {
    static auto &theLoader = *new Loader;
    return theLoader;
}

VendorCallLog &callLog() {
    // Never destroyed, like the library.
    static auto &log = *new VendorCallLog(lcAsee, {std::begin(loggedNames), std::end(loggedNames)});
    return log;
}

}  // namespace

#define OCELA_FORWARD(name, parameters, arguments)                                                \
    int asee_sdk::name parameters {                                                               \
        const auto entryPoint = loader().current().function<int(*) parameters>(index_##name);     \
        return entryPoint ? callLog().checked(index_##name, entryPoint arguments) : notAvailable; \
    }
OCELA_ASEE_FUNCTIONS(OCELA_FORWARD)
#undef OCELA_FORWARD

void asee::loadLibrary() {
    loader().load();
}

const std::optional<VendorLibrary::Error> &asee::libraryError() {
    return loader().current().error();
}
