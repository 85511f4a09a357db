#pragma once

#include <functional>
#include <memory>
#include <thread>

namespace sim {

/// A thread that calls a function at a constant rate. It starts immediately and stops when the function returns false
/// or the Ticker is destroyed.
///
/// The destructor waits for a running call, except when the call itself destroys the Ticker. No lock is held during a
/// call. After a delay, the calls missed in the last 20 ms are made up for.
class Ticker {
public:
    Ticker(double rateHz, std::function<bool()> work);
    ~Ticker();

    Ticker(const Ticker &) = delete;
    Ticker &operator=(const Ticker &) = delete;

private:
    struct Stop;

    std::shared_ptr<Stop> stop_;  // shared with the thread, which may outlive the Ticker
    std::thread thread_;
};

}  // namespace sim
