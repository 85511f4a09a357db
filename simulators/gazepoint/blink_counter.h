#pragma once

#include "gazepoint/record.h"

#include <deque>

namespace sim::gazepoint {

/// Counts blinks: short losses of both eyes.
class BlinkCounter {
public:
    /// Takes one sample. `seconds` must not decrease from call to call, not even after a calibration.
    Blink add(double seconds, bool anyEyeSeen);

private:
    bool closed_ = false;
    double closedSince_s_ = 0;
    int lastId_ = 0;
    std::deque<double> recentEnds_s_;  // of the blinks in the last minute
};

}  // namespace sim::gazepoint
