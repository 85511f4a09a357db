#include "subject/blinks.h"

namespace sim {

namespace {

constexpr double minDuration_s = 0.100;
constexpr double maxDuration_s = 0.200;
constexpr double intervalSigma = 0.4;

}  // namespace

Blinks::Blinks(std::uint64_t seed, double medianInterval_s) : random_(seed), medianInterval_s_(medianInterval_s) {}

bool Blinks::closedAt(double seconds) {
    if (medianInterval_s_ <= 0)
        return false;
    while (seconds >= end_s_)
        next();
    return seconds >= start_s_;
}

void Blinks::next() {
    start_s_ = end_s_ +
               random_.logNormalWithin(medianInterval_s_, intervalSigma, medianInterval_s_ / 3, medianInterval_s_ * 3);
    end_s_ = start_s_ + random_.uniform(minDuration_s, maxDuration_s);
}

}  // namespace sim
