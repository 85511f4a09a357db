#include "core/arrival_clock.h"

using std::chrono::duration_cast;
using std::chrono::microseconds;
using std::chrono::milliseconds;

// The epoch of std::chrono::system_clock is 1970 UTC on all supported platforms.

qint64 ArrivalClock::startUtcMs() const {
    return duration_cast<milliseconds>(system_.time_since_epoch()).count();
}

microseconds ArrivalClock::utc(std::chrono::steady_clock::time_point arrival) const {
    return duration_cast<microseconds>(system_.time_since_epoch()) + duration_cast<microseconds>(arrival - steady_);
}

std::string ArrivalClock::utcMsText(std::chrono::steady_clock::time_point arrival) const {
    constexpr long long microsecondsPerMs = 1000;
    const long long time = utc(arrival).count();
    const std::string fraction = std::to_string(microsecondsPerMs + time % microsecondsPerMs).substr(1);
    return std::to_string(time / microsecondsPerMs) + '.' + fraction;
}
