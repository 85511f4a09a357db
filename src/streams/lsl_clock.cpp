#include "streams/lsl_clock.h"

using namespace lsl;

namespace {

constexpr int readingCount = 20;

double seconds(Clock::TimePoint time) {
    return std::chrono::duration<double>(time.time_since_epoch()).count();
}

}  // namespace

Clock::Clock(const Functions &functions) : functions_(functions) {
    measure();
}

void Clock::check(TimePoint now) {
    if (now - measuredAt_ > checkInterval)
        measure();
}

double Clock::lslTime(TimePoint time) const {
    return seconds(time) + offset_;
}

/// LSL's clock is read between two readings of the steady clock. The pair with the smallest delay is the most accurate
/// one, because the thread was not interrupted between its readings.
void Clock::measure() {
    auto smallestDelay = std::chrono::steady_clock::duration::max();
    for (int i = 0; i < readingCount; ++i) {
        const TimePoint before = std::chrono::steady_clock::now();
        const double lslTime = functions_.lsl_local_clock();
        const TimePoint after = std::chrono::steady_clock::now();
        if (after - before >= smallestDelay)
            continue;
        smallestDelay = after - before;
        offset_ = lslTime - seconds(before + smallestDelay / 2);
        measuredAt_ = after;
    }
}
