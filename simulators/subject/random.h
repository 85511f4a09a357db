#pragma once

#include <cstdint>
#include <random>

namespace sim {

/// Random numbers that are the same on every platform under one seed; the standard library's own
/// distributions are not, only its generators are.
class Random {
public:
    explicit Random(std::uint64_t seed);

    double uniform(double low, double high);
    double normal(double mean, double deviation);
    /// A log-normal value, drawn again until it lies in `low`..`high`, which must hold the median.
    double logNormalWithin(double median, double sigma, double low, double high);

private:
    std::mt19937_64 generator_;
};

/// A well-mixed 64-bit value for any input: independent streams of one seed are `mix(seed + number)`.
std::uint64_t mix(std::uint64_t value);

/// The standard normal value that belongs to `key`; the same key always gives the same value.
double normalOf(std::uint64_t key);

}  // namespace sim
