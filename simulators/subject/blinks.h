#pragma once

#include "subject/random.h"

namespace sim {

/// The blinks of the simulated person: 100 to 200 ms long, at random intervals.
class Blinks {
public:
    /// There are no blinks if `medianInterval_s` is 0 or less.
    Blinks(std::uint64_t seed, double medianInterval_s);

    /// `seconds` must not decrease from call to call.
    bool closedAt(double seconds);

private:
    void next();

    Random random_;
    double medianInterval_s_;
    double start_s_ = 0;
    double end_s_ = 0;
};

}  // namespace sim
