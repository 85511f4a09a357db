#pragma once

#include "device/environment.h"

#include <optional>

namespace sim::eyetech {

/// What the environment variables OCELA_SIM_EYETECH_* ask of the library; docs/devices.md tells what each one does.
struct Options {
    static Options fromEnvironment();

    int devices = 1;
    double appearAfter_s = 0;
    double unplugAfter_s = 0;  ///< 0: never
    double replugAfter_s = 0;  ///< 0: never
    std::string unpluggedFile;
    int enumerateError = 0;
    int statusError = 0;
    int startError = 0;
    int frameBlocksMs = 0;
    double rate = 60;
    environment::Size image{2048, 1080};
    std::optional<environment::Size> toldImage;
    std::set<std::string> faults;

    [[nodiscard]] bool has(const char *fault) const { return faults.count(fault) > 0; }
};

}  // namespace sim::eyetech
