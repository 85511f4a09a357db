#include "device/ticker.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>

namespace sim {

using Clock = std::chrono::steady_clock;

namespace {

/// How much a busy machine may delay and still get its full rate.
constexpr std::chrono::milliseconds kCatchUp(20);

}  // namespace

struct Ticker::Stop {
    std::mutex mutex;
    std::condition_variable wake;
    bool wanted = false;  // guarded by mutex

    /// False when it was time to stop before `moment`.
    bool waitUntil(Clock::time_point moment) {
        std::unique_lock lock(mutex);
        return !wake.wait_until(lock, moment, [this] { return wanted; });
    }

    void want() {
        const std::lock_guard lock(mutex);
        wanted = true;
        wake.notify_all();
    }
};

Ticker::Ticker(double hertz, std::function<bool()> work) : stop_(std::make_shared<Stop>()) {
    const auto period = std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(1 / hertz));
    thread_ = std::thread([stop = stop_, period, work = std::move(work)] {
        auto next = Clock::now();
        while (stop->waitUntil(next) && work())
            next = std::max(next + period, Clock::now() - kCatchUp);
    });
}

Ticker::~Ticker() {
    stop_->want();
    if (thread_.get_id() == std::this_thread::get_id())
        thread_.detach();
    else
        thread_.join();
}

}  // namespace sim
