#include "subject/blinks.h"

namespace sim {

namespace {

constexpr double kShortest = 0.100;
constexpr double kLongest = 0.200;
constexpr double kIntervalSigma = 0.4;

}  // namespace

Blinks::Blinks(std::uint64_t seed, double interval) : random_(seed), interval_(interval) {}

bool Blinks::closedAt(double seconds) {
    if (interval_ <= 0)
        return false;
    while (seconds >= end_)
        next();
    return seconds >= start_;
}

void Blinks::next() {
    start_ = end_ + random_.logNormalWithin(interval_, kIntervalSigma, interval_ / 3, interval_ * 3);
    end_ = start_ + random_.uniform(kShortest, kLongest);
}

}  // namespace sim
