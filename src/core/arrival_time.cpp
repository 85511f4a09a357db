#include "core/arrival_time.h"

namespace {

using std::chrono::duration_cast;
using std::chrono::microseconds;

constexpr long long microsecondsPerMs = 1000;

struct Anchor {
    std::chrono::steady_clock::time_point steady = std::chrono::steady_clock::now();
    std::chrono::system_clock::time_point system = std::chrono::system_clock::now();
};

}  // namespace

long long arrival_time::utcMicroseconds(std::chrono::steady_clock::time_point arrival) {
    static const Anchor anchor;
    // The epoch of std::chrono::system_clock is 1970 UTC on all supported platforms.
    const auto atAnchor = duration_cast<microseconds>(anchor.system.time_since_epoch());
    return (atAnchor + duration_cast<microseconds>(arrival - anchor.steady)).count();
}

std::string arrival_time::utcMsText(std::chrono::steady_clock::time_point arrival) {
    const long long time = utcMicroseconds(arrival);
    const std::string fraction = std::to_string(microsecondsPerMs + time % microsecondsPerMs).substr(1);
    return std::to_string(time / microsecondsPerMs) + '.' + fraction;
}
