#pragma once

#include <cstdint>
#include <random>

namespace sim {

constexpr double twoPi = 6.283185307179586;

/// Random numbers that are the same on every platform for the same seed.
///
/// The C++ standard specifies the output of its generators, but not of its distributions. The class therefore
/// implements its own distributions.
class Random {
public:
    explicit Random(std::uint64_t seed);

    double uniform(double low, double high);
    double normal(double mean, double deviation);
    /// Returns a log-normal value, drawn again until it lies in `low`..`high`. The range must contain the median.
    double logNormalWithin(double median, double sigma, double low, double high);

private:
    std::mt19937_64 generator_;
};

/// Hashes a 64-bit value. `mix(seed + number)` gives independent random streams of one seed.
std::uint64_t mix(std::uint64_t value);

/// Returns a standard normal value that depends only on `key`.
double normalOf(std::uint64_t key);

}  // namespace sim
