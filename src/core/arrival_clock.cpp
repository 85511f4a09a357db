#include "core/arrival_clock.h"

using std::chrono::duration_cast;
using std::chrono::floor;
using std::chrono::microseconds;
using std::chrono::milliseconds;

// Rounded down also before the start, so that markers before and after it have the right distance.
// The epoch of std::chrono::system_clock is 1970 UTC on all supported platforms.

qint64 ArrivalClock::startUtcMs() const {
    return duration_cast<milliseconds>(system_.time_since_epoch()).count();
}

microseconds ArrivalClock::utc(std::chrono::steady_clock::time_point arrival) const {
    return floor<microseconds>(system_.time_since_epoch()) + floor<microseconds>(arrival - steady_);
}

std::string ArrivalClock::utcMsText(microseconds utc) {
    constexpr long long microsecondsPerMs = 1000;
    const long long time = utc.count();
    const std::string fraction = std::to_string(microsecondsPerMs + time % microsecondsPerMs).substr(1);
    return std::to_string(time / microsecondsPerMs) + '.' + fraction;
}
