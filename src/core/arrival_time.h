#pragma once

#include <chrono>
#include <string>

/// Converts arrival times from the steady clock to UTC. Any thread.
namespace arrival_time {

/// Returns the microseconds since 1970 UTC at `arrival`. The first call in the process reads the system clock. After
/// that only the steady clock counts, so the result does not jump when the system clock is set.
[[nodiscard]] long long utcMicroseconds(std::chrono::steady_clock::time_point arrival);

/// Returns the milliseconds since 1970 UTC with three decimals, for example "1700000000123.456".
[[nodiscard]] std::string utcMsText(std::chrono::steady_clock::time_point arrival);

}  // namespace arrival_time
