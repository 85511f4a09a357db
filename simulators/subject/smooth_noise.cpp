#include "subject/smooth_noise.h"

#include "subject/random.h"

#include <cmath>

namespace sim {

namespace {

// Blending two independent values with smoothStep() reduces the variance to 26/35 on average. This factor, the square
// root of 35/26, compensates for it.
constexpr double blendCorrection = 1.1602;

double smoothStep(double u) {
    return u * u * (3 - 2 * u);
}

}  // namespace

SmoothNoise::SmoothNoise(std::uint64_t seed, double period_s, double deviation)
    : seed_(mix(seed)), period_s_(period_s), deviation_(deviation * blendCorrection) {}

double SmoothNoise::at(double seconds) const {
    const double position = seconds / period_s_;
    const double knot = std::floor(position);
    const auto key = seed_ + static_cast<std::uint64_t>(static_cast<std::int64_t>(knot));
    const double blend = smoothStep(position - knot);
    return deviation_ * ((1 - blend) * normalOf(key) + blend * normalOf(key + 1));
}

PointNoise::PointNoise(std::uint64_t seed, double period_s, double deviation)
    : x_(mix(seed), period_s, deviation), y_(mix(seed + 1), period_s, deviation) {}

Point PointNoise::at(double seconds) const {
    return {x_.at(seconds), y_.at(seconds)};
}

}  // namespace sim
