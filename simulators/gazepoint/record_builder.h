#pragma once

#include "gazepoint/blink_counter.h"
#include "gazepoint/fixation_detector.h"
#include "gazepoint/record.h"
#include "subject/eye_state.h"
#include "subject/physical_setup.h"

namespace sim::gazepoint {

/// Builds the records of the tracker from the state of the person. Adds counters and timestamps, and detects fixations
/// and blinks. Times are seconds of a monotonic clock.
class RecordBuilder {
public:
    /// `ticksAtZero` is the TIME_TICK at time 0.
    RecordBuilder(const PhysicalSetup &setup, std::int64_t ticksAtZero);

    Record build(double seconds, const EyeState &eyes);

    /// Restarts TIME at 0, as a calibration does.
    void restartTime(double seconds);

    static constexpr std::int64_t ticksPerSecond = 10'000'000;

private:
    PhysicalSetup setup_;
    std::int64_t ticksAtZero_;
    double timeZero_s_ = 0;
    Record record_;  // the latest one; a lost eye keeps its last values
    FixationDetector fixations_;
    BlinkCounter blinks_;
};

}  // namespace sim::gazepoint
