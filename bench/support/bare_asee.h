#pragma once

#include "trackers/asee/asee_sdk.h"

/// A vendor's library that does nothing but keep the callbacks, for a benchmark to call.
namespace bench {

struct BareAsee {
    asee::ImageCallback image = nullptr;
    void *imageContext = nullptr;
    asee::GazeCallback gaze = nullptr;
    void *gazeContext = nullptr;
};

[[nodiscard]] BareAsee &bareAsee();

}  // namespace bench
