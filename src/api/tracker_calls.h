#pragma once

#include "api/lifetime_guard.h"
#include "core/eyetracker_interface.h"

#include <atomic>
#include <functional>
#include <memory>

/// The selected tracker, and the calls that wait for its thread. Connection threads share the ownership, so that a
/// thread that outlives the tracker can still ask. Thread-safe.
class TrackerCalls {
public:
    /// Limits the memory for calls that wait.
    static constexpr int maxPendingCalls = 1000;

    /// Null for none. The tracker must exist as long as it is selected, or until close().
    void select(EyetrackerInterface *tracker) { tracker_ = tracker; }
    [[nodiscard]] EyetrackerInterface *selected() const { return tracker_; }

    /// Calls `call` on the thread of the selected tracker: at once if that is the calling thread, otherwise queued.
    /// Returns false if there is no tracker, too many calls are waiting, or close() was called.
    [[nodiscard]] bool queue(const std::function<void(EyetrackerInterface &)> &call);

    /// Refuses all calls from now on. The tracker may be destroyed afterwards.
    void close() { guard_.close(); }

private:
    [[nodiscard]] bool queueFor(EyetrackerInterface *tracker, const std::function<void(EyetrackerInterface &)> &call);

    LifetimeGuard guard_;
    std::atomic<EyetrackerInterface *> tracker_{nullptr};
    const std::shared_ptr<std::atomic<int>> pendingCount_ = std::make_shared<std::atomic<int>>(0);
};
