#pragma once

#include "subject/eye_state.h"
#include "trackers/eyetech/quicklink2.h"

namespace sim::eyetech {

/// An image as a frame record tells of it.
struct FrameImage {
    const unsigned char *pixels = nullptr;
    int width = 0;
    int height = 0;
};

/// The vendor's record of one frame. `cameraWidth` and `cameraHeight`: the size in whose pixels pupils are told.
QLFrameRecord makeFrameRecord(const EyeState &eyes, const FrameImage &image, int cameraWidth, int cameraHeight);

}  // namespace sim::eyetech
