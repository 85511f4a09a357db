#pragma once

#include "device/environment.h"
#include "subject/eye_state.h"
#include "trackers/eyetech/sdk/quicklink2.h"

namespace sim::eyetech {

/// The image that a frame record reports.
struct FrameImage {
    const unsigned char *pixels = nullptr;
    int width = 0;
    int height = 0;
};

/// Makes the vendor's record of one frame. Pupil positions are in pixels of an image of `cameraSize`.
[[nodiscard]] quicklink2::QLFrameRecord makeFrameRecord(const EyeState &eyes, const FrameImage &image,
                                                        environment::Size cameraSize);

}  // namespace sim::eyetech
