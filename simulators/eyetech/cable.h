#pragma once

#include "eyetech/options.h"

#include <chrono>
#include <mutex>
#include <optional>

namespace sim::eyetech {

/// The connection of the devices. They are unplugged after a time, or while a file exists that a test creates and
/// removes. Thread-safe.
class Cable {
public:
    void setOptions(const Options &options);
    /// Starts the time until the devices are unplugged. Only the first call has an effect.
    void deviceStarted();
    [[nodiscard]] bool pluggedIn();
    /// Returns how often the devices were plugged in again. Counts only changes that a call of pluggedIn() has
    /// detected.
    [[nodiscard]] int replugCount();

private:
    using Clock = std::chrono::steady_clock;

    [[nodiscard]] bool isConnected() const;
    [[nodiscard]] bool unpluggedByTime() const;

    const Clock::time_point loaded_ = Clock::now();
    std::mutex mutex_;  // guards the members below
    Options options_;
    std::optional<Clock::time_point> started_;
    bool wasPluggedIn_ = true;
    int replugCount_ = 0;
};

}  // namespace sim::eyetech
