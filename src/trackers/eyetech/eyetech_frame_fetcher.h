#pragma once

#include "trackers/eyetech/eyetech_record_reader.h"

namespace eyetech {

/// Waits up to 10 s for the next frame of a device, and copies its image. The result of the library's call is ignored:
/// that is intended. If any device was stopped meanwhile, the frame has no image. Callable from any thread.
[[nodiscard]] QLFrameData fetchFrame(int device);

/// Stops a device. The library may then free the image of its last frame, so this function waits while fetchFrame()
/// copies an image. It does not wait for a frame. Callable from any thread.
void stopDevice(int device);

}  // namespace eyetech
