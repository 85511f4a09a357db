#pragma once

#include "gazepoint/blink_counter.h"
#include "gazepoint/fixation_detector.h"
#include "gazepoint/record.h"
#include "subject/eye_state.h"
#include "subject/physical_setup.h"

namespace sim::gazepoint {

/// Turns what is to be seen of the person into the tracker's records: counts them, stamps them, finds
/// fixations and blinks. Times are seconds of a monotonic clock.
class RecordBuilder {
public:
    /// `ticksAtZero`: TIME_TICK at time 0.
    RecordBuilder(const PhysicalSetup &setup, std::int64_t ticksAtZero);

    Record build(double seconds, const EyeState &eyes);

    /// TIME counts from `seconds` on, as it does after a calibration.
    void restartTime(double seconds);

    static constexpr std::int64_t kTicksPerSecond = 10'000'000;

private:
    PhysicalSetup setup_;
    std::int64_t ticksAtZero_;
    double timeZero_ = 0;
    Record record_;  // the latest one: an eye that is lost keeps its last values
    FixationDetector fixations_;
    BlinkCounter blinks_;
};

}  // namespace sim::gazepoint
