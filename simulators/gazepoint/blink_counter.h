#pragma once

#include "gazepoint/record.h"

#include <deque>

namespace sim::gazepoint {

/// Counts blinks: short times in which neither eye is seen.
class BlinkCounter {
public:
    /// `seconds` on a clock that never starts again.
    Blink add(double seconds, bool anyEyeSeen);

private:
    bool closed_ = false;
    double closedSince_ = 0;
    int lastId_ = 0;
    std::deque<double> recent_;  // ends of the blinks within the last minute
};

}  // namespace sim::gazepoint
