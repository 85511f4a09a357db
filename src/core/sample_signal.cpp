#include "core/sample_signal.h"

void SampleSignal::set() {
    // Both sides write their own variable first and then read the other one. So either this thread sees the waiting
    // thread, or that thread sees the new count and does not wait.
    ++count_;
    if (waitingCount_ == 0)
        return;
    { const std::lock_guard<std::mutex> lock(mutex_); }
    changed_.notify_all();
}

void SampleSignal::wait(quint64 seenCount) {
    std::unique_lock<std::mutex> lock(mutex_);
    ++waitingCount_;
    changed_.wait(lock, [&] { return count_ != seenCount; });
    --waitingCount_;
}
