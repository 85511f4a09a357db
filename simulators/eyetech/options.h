#pragma once

#include "device/environment.h"

#include <optional>

namespace sim::eyetech {

/// The options in the environment variables OCELA_SIM_EYETECH_*, which docs/simulators.md describes.
struct Options {
    static Options fromEnvironment();

    int deviceCount = 1;
    double appearAfter_s = 0;
    double unplugAfter_s = 0;  ///< 0: never
    double replugAfter_s = 0;  ///< 0: never
    std::string unpluggedFile;
    int enumerateError = 0;
    int statusError = 0;
    int startError = 0;
    int frameBlocksMs = 0;
    double rateHz = 60;
    environment::Size image{2048, 1080};
    std::optional<environment::Size> reportedImage;  ///< instead of the real size
    std::set<std::string> faults;

    [[nodiscard]] bool has(const char *fault) const { return faults.count(fault) > 0; }
};

}  // namespace sim::eyetech
