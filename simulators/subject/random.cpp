#include "subject/random.h"

#include <cmath>

namespace sim {

namespace {

/// Returns the upper 53 bits as a number in [0, 1).
double unitInterval(std::uint64_t bits) {
    return static_cast<double>(bits >> 11) * 0x1p-53;
}

/// The Box-Muller transform. The argument of the logarithm lies in (0, 1].
double normalFrom(std::uint64_t first, std::uint64_t second) {
    return std::sqrt(-2 * std::log(1 - unitInterval(first))) * std::cos(twoPi * unitInterval(second));
}

}  // namespace

Random::Random(std::uint64_t seed) : generator_(mix(seed)) {}

double Random::uniform(double low, double high) {
    return low + (high - low) * unitInterval(generator_());
}

double Random::normal(double mean, double deviation) {
    const std::uint64_t first = generator_();
    return mean + deviation * normalFrom(first, generator_());
}

double Random::logNormalWithin(double median, double sigma, double low, double high) {
    double value = 0;
    do {
        value = median * std::exp(normal(0, sigma));
    } while (value < low || value > high);
    return value;
}

// The finaliser of the SplitMix64 generator.
std::uint64_t mix(std::uint64_t value) {
    value += 0x9e3779b97f4a7c15U;
    value = (value ^ (value >> 30)) * 0xbf58476d1ce4e5b9U;
    value = (value ^ (value >> 27)) * 0x94d049bb133111ebU;
    return value ^ (value >> 31);
}

double normalOf(std::uint64_t key) {
    const std::uint64_t first = mix(key);
    return normalFrom(first, mix(first));
}

}  // namespace sim
