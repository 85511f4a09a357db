#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

/// The measuring side of the benchmarks: contenders take turns, round by round, so that whatever else the
/// machine does meets all of them alike. Single-threaded.
namespace bench {

/// One way of doing the work. The first of a list is the baseline that the others are compared with.
struct Contender {
    std::string name;
    std::size_t operations;       ///< that one call of `run` performs
    std::function<void()> run;    ///< the measured part
    std::function<void()> reset;  ///< before each `run`, not measured; may be empty
};

struct Measurement {
    std::string name;
    std::vector<double> nanoseconds;  ///< per operation, one a round
};

/// Keeps the compiler from dropping the work that made `value`.
template <typename T>
void keep(const T &value) {
    asm volatile("" : : "g"(&value) : "memory");
}

[[nodiscard]] double median(std::vector<double> values);

/// The median over the rounds of a round's own ratio: what slows a whole round leaves it as it is.
[[nodiscard]] double medianRatio(const std::vector<double> &values, const std::vector<double> &baseline);

/// The number of rounds that the command line asks for as its only argument, else `otherwise`.
[[nodiscard]] int roundsFrom(int argc, char **argv, int otherwise);

/// Lets the contenders take turns for `rounds` rounds, after one round that is not counted.
[[nodiscard]] std::vector<Measurement> interleave(const std::vector<Contender> &contenders, int rounds);

/// Prints median, fastest and slowest round, rate and the ratio to the first line's time.
void print(const std::string &title, const std::vector<Measurement> &measurements);

}  // namespace bench
