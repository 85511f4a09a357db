#pragma once

#include "subject/random.h"

namespace sim {

/// When the person's eyes are closed: blinks of 100 to 200 ms, `interval` seconds apart in the middle.
class Blinks {
public:
    /// An `interval` of 0 or less: the person never blinks.
    Blinks(std::uint64_t seed, double interval);

    /// `seconds` must not run backwards.
    bool closedAt(double seconds);

private:
    void next();

    Random random_;
    double interval_;
    double start_ = 0;
    double end_ = 0;
};

}  // namespace sim
