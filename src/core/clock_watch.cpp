#include "core/clock_watch.h"

#include <utility>

ClockWatch::ClockWatch(SystemNow systemNow) : systemNow_(std::move(systemNow)), difference_(readDifference()) {}

bool ClockWatch::hasStepped() {
    const std::optional<Difference> difference = readDifference();
    if (!difference)
        return false;
    const Difference change = *difference - difference_.value_or(*difference);
    difference_ = difference;
    return std::chrono::abs(change) >= minStep;
}

std::optional<ClockWatch::Difference> ClockWatch::readDifference() const {
    using Steady = std::chrono::steady_clock;
    const Steady::time_point before = Steady::now();
    const auto system = systemNow_();
    // On a busy machine, the thread may be interrupted between the clocks.
    if (Steady::now() - before >= minStep / 2)
        return std::nullopt;
    return std::chrono::duration_cast<Difference>(system.time_since_epoch() - before.time_since_epoch());
}
