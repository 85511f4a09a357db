#pragma once

#include "trackers/asee/sdk/asee_sdk.h"

/// An aSee library that only stores the callbacks. The benchmark calls them.
namespace bench {

struct BareAsee {
    asee_sdk::ImageCallback image = nullptr;
    void *imageContext = nullptr;
    asee_sdk::GazeCallback gaze = nullptr;
    void *gazeContext = nullptr;
};

[[nodiscard]] BareAsee &bareAsee();

}  // namespace bench
