#pragma once

#include "core/eye_tracking_sample.h"

#include <cstddef>
#include <vector>

namespace bench {

/// Returns `count` samples, 1 ms apart, with independent random gaze points on a 1920x1080 screen and as many digits as
/// real samples. Every call returns the same samples.
[[nodiscard]] std::vector<EyeTrackingSample> typicalSamples(std::size_t count);

}  // namespace bench
