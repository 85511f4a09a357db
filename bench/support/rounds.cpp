#include "support/rounds.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>

namespace {

double nanosecondsOf(const std::function<void()> &run) {
    const auto begin = std::chrono::steady_clock::now();
    run();
    return std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - begin).count();
}

double measure(const bench::Candidate &candidate) {
    if (candidate.reset)
        candidate.reset();
    return nanosecondsOf(candidate.run) / static_cast<double>(candidate.operationCount);
}

}  // namespace

double bench::median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    const std::size_t middle = values.size() / 2;
    return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

double bench::medianRatio(const std::vector<double> &values, const std::vector<double> &baseline) {
    std::vector<double> ratios;
    for (std::size_t round = 0; round < values.size(); ++round)
        ratios.push_back(values[round] / baseline[round]);
    return median(ratios);
}

int bench::roundsFrom(int argc, char **argv, int defaultCount) {
    if (argc < 2)
        return defaultCount;
    const int rounds = std::atoi(argv[1]);
    if (argc == 2 && rounds > 0)
        return rounds;
    std::fprintf(stderr, "usage: %s [ROUNDS]\n", argv[0]);
    std::exit(2);
}

std::vector<bench::Measurement> bench::interleave(const std::vector<Candidate> &candidates, int rounds) {
    std::vector<Measurement> measurements;
    for (const Candidate &candidate : candidates) {
        measure(candidate);  // warms up
        measurements.push_back({candidate.name, {}});
    }
    for (int round = 0; round < rounds; ++round) {
        for (std::size_t i = 0; i < candidates.size(); ++i)
            measurements[i].nanoseconds.push_back(measure(candidates[i]));
    }
    return measurements;
}

void bench::print(const std::string &title, const std::vector<Measurement> &measurements) {
    std::printf("\n%s (%zu rounds)\n%-58s %9s %9s %9s %12s %9s\n", title.c_str(),
                measurements.front().nanoseconds.size(), "", "median ns", "fastest", "slowest", "per second",
                "x first");
    for (const Measurement &line : measurements) {
        const double middle = median(line.nanoseconds);
        const auto [fastest, slowest] = std::minmax_element(line.nanoseconds.begin(), line.nanoseconds.end());
        std::printf("%-58s %9.0f %9.0f %9.0f %12.0f %9.2f\n", line.name.c_str(), middle, *fastest, *slowest,
                    1e9 / middle, medianRatio(line.nanoseconds, measurements.front().nanoseconds));
    }
}
