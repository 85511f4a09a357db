#pragma once

#include "subject/gaze_angles.h"

#include <cstdint>

namespace sim {

/// Gaussian noise whose values at different times are independent, however close the times are. The value depends only
/// on the seed and on the time.
class WhiteNoise {
public:
    /// `deviation_deg` is the standard deviation of each of the two angles.
    WhiteNoise(std::uint64_t seed, double deviation_deg);

    [[nodiscard]] GazeAngles at(double seconds) const;

private:
    std::uint64_t seed_;
    double deviation_deg_;
};

}  // namespace sim
