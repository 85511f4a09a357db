#pragma once

#include "subject/eye_state.h"

#include <cstdint>

namespace sim {

/// Gaussian noise that depends only on the time, so that the curve is the same at every sample rate.
///
/// The curve is smooth. Its values are independent at multiples of `period_s`.
class SmoothNoise {
public:
    SmoothNoise(std::uint64_t seed, double period_s, double deviation);

    [[nodiscard]] double at(double seconds) const;

private:
    std::uint64_t seed_;
    double period_s_;
    double deviation_;
};

/// Independent noise for the two coordinates of a point.
class PointNoise {
public:
    PointNoise(std::uint64_t seed, double period_s, double deviation);

    [[nodiscard]] Point at(double seconds) const;

private:
    SmoothNoise x_;
    SmoothNoise y_;
};

}  // namespace sim
