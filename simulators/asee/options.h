#pragma once

#include "device/environment.h"

#include <optional>

namespace sim::asee_pro {

/// What the environment variables OCELA_SIM_ASEE_* ask of the tracker; docs/devices.md tells what each one does.
struct Options {
    static Options fromEnvironment();

    double rate = 120;
    double imageRate = 60;  ///< 0: no images
    environment::Size image{1280, 1024};
    std::optional<environment::Size> toldImage;
    std::optional<int> toldBytes;
    double point_s = 1.5;
    int connectError = 0;
    int startError = 0;
    int lateCallbacksMs = 0;
    std::set<std::string> faults;

    [[nodiscard]] bool has(const char *fault) const { return faults.count(fault) > 0; }
};

}  // namespace sim::asee_pro
