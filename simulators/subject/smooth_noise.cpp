#include "subject/smooth_noise.h"

#include "subject/random.h"

#include <cmath>

namespace sim {

namespace {

// Between two independent values the blend has less variance than either: 26/35 of it on average over
// smoothStep().
constexpr double kBlendCorrection = 1.1602;

double smoothStep(double u) {
    return u * u * (3 - 2 * u);
}

}  // namespace

SmoothNoise::SmoothNoise(std::uint64_t seed, double period, double deviation)
    : seed_(mix(seed)), period_(period), deviation_(deviation * kBlendCorrection) {}

double SmoothNoise::at(double seconds) const {
    const double position = seconds / period_;
    const double knot = std::floor(position);
    const auto key = seed_ + static_cast<std::uint64_t>(static_cast<std::int64_t>(knot));
    const double blend = smoothStep(position - knot);
    return deviation_ * ((1 - blend) * normalOf(key) + blend * normalOf(key + 1));
}

PointNoise::PointNoise(std::uint64_t seed, double period, double deviation)
    : x_(mix(seed), period, deviation), y_(mix(seed + 1), period, deviation) {}

Point PointNoise::at(double seconds) const {
    return {x_.at(seconds), y_.at(seconds)};
}

}  // namespace sim
