#pragma once

#include <mutex>
#include <utility>

/// A value that several threads share, together with the lock that guards it: it cannot be reached without
/// holding the lock. Keep the function that is passed in short, and emit no signal from within it.
template <typename T>
class Guarded {
public:
    Guarded() : value_() {}
    explicit Guarded(T value) : value_(std::move(value)) {}

    template <typename Function>
    auto with(Function &&function) {
        const std::lock_guard<std::mutex> lock(mutex_);
        return std::forward<Function>(function)(value_);
    }

    [[nodiscard]] T copy() const {
        const std::lock_guard<std::mutex> lock(mutex_);
        return value_;
    }

    /// Stores `value` and returns what stood there before.
    T exchange(T value) {
        const std::lock_guard<std::mutex> lock(mutex_);
        return std::exchange(value_, std::move(value));
    }

private:
    mutable std::mutex mutex_;
    T value_;
};
