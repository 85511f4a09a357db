#pragma once

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

/// Limits the number of threads that process bodies at the same time to half of the processor's cores. Otherwise many
/// large uploads would keep all cores busy, and other clients would wait for a turn. Thread-safe.
class WorkSlots {
public:
    /// Occupies a slot while it exists.
    class Slot {
    public:
        /// Waits for a free slot, but not after `stopping` is set.
        Slot(WorkSlots &slots, const std::atomic<bool> &stopping) : slots_(slots), taken_(slots.take(stopping)) {}
        ~Slot() {
            if (taken_)
                slots_.release();
        }
        Slot(const Slot &) = delete;
        Slot &operator=(const Slot &) = delete;

    private:
        WorkSlots &slots_;
        const bool taken_;
    };

private:
    [[nodiscard]] bool take(const std::atomic<bool> &stopping) {
        constexpr std::chrono::milliseconds checkInterval{100};
        std::unique_lock<std::mutex> lock(mutex_);
        while (!stopping && !released_.wait_for(lock, checkInterval, [this] { return freeCount_ > 0; })) {
        }
        if (stopping)
            return false;
        --freeCount_;
        return true;
    }
    void release() {
        const std::lock_guard<std::mutex> lock(mutex_);
        ++freeCount_;
        released_.notify_one();
    }

    std::mutex mutex_;  ///< guards freeCount_
    std::condition_variable released_;
    int freeCount_ = std::max(1, static_cast<int>(std::thread::hardware_concurrency() / 2));
};
