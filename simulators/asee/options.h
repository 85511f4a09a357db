#pragma once

#include "device/environment.h"

#include <optional>

namespace sim::asee_pro {

/// The options in the environment variables OCELA_SIM_ASEE_*, which docs/simulators.md describes.
struct Options {
    static Options fromEnvironment();

    double rateHz = 120;
    double imageRateHz = 60;  ///< 0: no images
    environment::Size image{1280, 1024};
    std::optional<environment::Size> reportedImage;  ///< instead of the real size
    std::optional<int> reportedSizeBytes;            ///< instead of the real size
    double point_s = 1.5;
    int connectError = 0;
    int startError = 0;
    int lateCallbacksMs = 0;
    std::set<std::string> faults;

    [[nodiscard]] bool has(const char *fault) const { return faults.count(fault) > 0; }
};

}  // namespace sim::asee_pro
