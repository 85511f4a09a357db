#pragma once

#include "eyetech/options.h"

#include <chrono>
#include <mutex>
#include <optional>

namespace sim::eyetech {

/// Whether the devices are plugged in, which depends on the clock and on a file that a test makes and removes.
/// Callable from any thread.
class Cable {
public:
    void setOptions(const Options &options);
    /// The first start of a device; the time until it is unplugged counts from then.
    void deviceStarted();
    bool pluggedIn();

private:
    using Clock = std::chrono::steady_clock;

    [[nodiscard]] bool unpluggedByTime() const;

    const Clock::time_point loaded_ = Clock::now();
    std::mutex mutex_;  // guards what follows
    Options options_;
    std::optional<Clock::time_point> started_;
};

}  // namespace sim::eyetech
