#pragma once

#include "subject/eye_state.h"

#include <cstdint>

namespace sim {

/// Gaussian noise that is a function of time alone, so that every sampling rate sees the same curve.
///
/// Independent values stand `period` seconds apart; between them the curve is smooth.
class SmoothNoise {
public:
    SmoothNoise(std::uint64_t seed, double period, double deviation);

    [[nodiscard]] double at(double seconds) const;

private:
    std::uint64_t seed_;
    double period_;
    double deviation_;
};

/// Independent noise of a place's two coordinates.
class PointNoise {
public:
    PointNoise(std::uint64_t seed, double period, double deviation);

    [[nodiscard]] Point at(double seconds) const;

private:
    SmoothNoise x_;
    SmoothNoise y_;
};

}  // namespace sim
