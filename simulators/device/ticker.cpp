#include "device/ticker.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>

namespace sim {

using Clock = std::chrono::steady_clock;

namespace {

/// After a delay, the calls missed in the last 20 ms are made up for, so that a busy machine still gets the full rate.
constexpr std::chrono::milliseconds maxCatchUp(20);

}  // namespace

struct Ticker::Stop {
    std::mutex mutex;
    std::condition_variable wake;
    bool stopped = false;  // guarded by mutex

    /// Returns false if stop() was called before `moment`.
    bool waitUntil(Clock::time_point moment) {
        std::unique_lock lock(mutex);
        return !wake.wait_until(lock, moment, [this] { return stopped; });
    }

    void stop() {
        const std::lock_guard lock(mutex);
        stopped = true;
        wake.notify_all();
    }
};

Ticker::Ticker(double rateHz, std::function<bool()> work) : stop_(std::make_shared<Stop>()) {
    const auto period = std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(1 / rateHz));
    thread_ = std::thread([stop = stop_, period, work = std::move(work)] {
        auto next = Clock::now();
        while (stop->waitUntil(next) && work())
            next = std::max(next + period, Clock::now() - maxCatchUp);
    });
}

Ticker::~Ticker() {
    stop_->stop();
    if (thread_.get_id() == std::this_thread::get_id())
        thread_.detach();
    else
        thread_.join();
}

}  // namespace sim
