#pragma once

#include <functional>
#include <memory>
#include <thread>

namespace sim {

/// A thread of a device's own that does its work at an even rate, from at once until the work returns false or the
/// Ticker is destroyed.
///
/// The destructor waits for work that is going on, but from within the work itself it only says that this was the last
/// time. No lock is held while working. What was missed by a delay is made up for, unless the delay was long.
class Ticker {
public:
    Ticker(double hertz, std::function<bool()> work);
    ~Ticker();

    Ticker(const Ticker &) = delete;
    Ticker &operator=(const Ticker &) = delete;

private:
    struct Stop;

    std::shared_ptr<Stop> stop_;  // the thread's, too: it may outlive a Ticker that is destroyed from within
    std::thread thread_;
};

}  // namespace sim
