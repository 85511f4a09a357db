#pragma once

#include <chrono>
#include <functional>
#include <optional>

/// Notices that the system clock jumps against the steady clock: it was set, or the computer slept. One thread.
class ClockWatch {
public:
    using SystemNow = std::function<std::chrono::system_clock::time_point()>;

    /// Time services correct smaller differences gradually, which changes the difference of the clocks by less than
    /// 1 ms per second.
    static constexpr std::chrono::milliseconds minStep{100};

    explicit ClockWatch(SystemNow systemNow = &std::chrono::system_clock::now);

    /// Returns whether the system clock has jumped by `minStep` or more since the previous call or the constructor. For
    /// an exact result, call it every few seconds or more often.
    [[nodiscard]] bool hasStepped();

private:
    using Difference = std::chrono::nanoseconds;

    [[nodiscard]] std::optional<Difference> readDifference() const;

    const SystemNow systemNow_;
    std::optional<Difference> difference_;  ///< of the system clock from the steady clock
};
