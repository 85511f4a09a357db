#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

/// Measures candidates in interleaved rounds, so that other load on the machine affects all of them equally.
/// Single-threaded.
namespace bench {

/// An implementation to be measured. The first candidate of a list is the baseline of the others.
struct Candidate {
    std::string name;
    std::size_t operationCount;   ///< operations per call of `run`
    std::function<void()> run;    ///< the measured function
    std::function<void()> reset;  ///< called before each `run`, and not measured; may be empty
};

struct Measurement {
    std::string name;
    std::vector<double> nanoseconds;  ///< time per operation, one value per round
};

/// Prevents the compiler from removing the calculation of `value`.
template <typename T>
void keep(const T &value) {
    asm volatile("" : : "g"(&value) : "memory");
}

[[nodiscard]] double median(std::vector<double> values);

/// Returns the median of the ratios of the single rounds. Load that slows down a whole round does not change its ratio.
[[nodiscard]] double medianRatio(const std::vector<double> &values, const std::vector<double> &baseline);

/// Returns the number of rounds in the only command line argument, or `defaultCount` without an argument. Exits with a
/// usage message if the arguments are invalid.
[[nodiscard]] int roundsFrom(int argc, char **argv, int defaultCount);

/// Measures each candidate once per round, after a warm-up round.
[[nodiscard]] std::vector<Measurement> interleave(const std::vector<Candidate> &candidates, int rounds);

/// Prints the median, the fastest and the slowest round, the rate, and the time relative to the first candidate.
void print(const std::string &title, const std::vector<Measurement> &measurements);

}  // namespace bench
