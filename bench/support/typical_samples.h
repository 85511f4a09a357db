#pragma once

#include "core/eye_tracking_sample.h"

#include <cstddef>
#include <vector>

namespace bench {

/// `count` samples of a gaze that wanders over a 1920x1080 screen, one a millisecond, with as many digits as
/// a tracker's have. The same at every call.
[[nodiscard]] std::vector<EyeTrackingSample> typicalSamples(std::size_t count);

}  // namespace bench
