#pragma once

#include <QtGlobal>
#include <atomic>
#include <condition_variable>
#include <mutex>

/// Wakes threads that wait for new samples. All trackers of the program can share one signal.
///
/// While no thread waits, set() costs a few nanoseconds. A sample is never missed: read count() before the samples, and
/// pass it to wait() afterwards.
class SampleSignal {
public:
    /// Ends all waits. Any thread.
    void set();
    /// Returns a value that changes with each set().
    [[nodiscard]] quint64 count() const { return count_; }
    /// Blocks until count() differs from `seenCount`.
    void wait(quint64 seenCount);

private:
    std::atomic<quint64> count_{0};
    std::atomic<int> waitingCount_{0};
    std::mutex mutex_;
    std::condition_variable changed_;
};
