#pragma once

#include <QtGlobal>
#include <chrono>
#include <string>

/// Converts arrivals to the time of day. Any thread.
///
/// Each recording has its own. It reads the system clock only at the start. After that only the steady clock counts, so
/// the times within a recording do not jump when the system clock is set. A clock for the whole process would be wrong
/// after the computer has slept.
class ArrivalClock {
public:
    explicit ArrivalClock(std::chrono::system_clock::time_point system = std::chrono::system_clock::now(),
                          std::chrono::steady_clock::time_point steady = std::chrono::steady_clock::now())
        : system_(system), steady_(steady) {}

    [[nodiscard]] std::chrono::system_clock::time_point start() const { return system_; }
    /// Returns the start in milliseconds since 1970 UTC.
    [[nodiscard]] qint64 startUtcMs() const;

    /// Returns the time since 1970 UTC.
    [[nodiscard]] std::chrono::microseconds utc(std::chrono::steady_clock::time_point arrival) const;

    /// Returns the same as text, see the other overload.
    [[nodiscard]] std::string utcMsText(std::chrono::steady_clock::time_point arrival) const {
        return utcMsText(utc(arrival));
    }
    /// Returns a time since 1970 UTC as text: milliseconds with three decimals, for example "1700000000123.456".
    [[nodiscard]] static std::string utcMsText(std::chrono::microseconds utc);

private:
    std::chrono::system_clock::time_point system_;
    std::chrono::steady_clock::time_point steady_;
};
