#pragma once

#include <mutex>
#include <utility>

/// A value that several threads share, and the lock that guards it. The value cannot be reached without the lock.
template <typename T>
class Guarded {
public:
    Guarded() : value_() {}
    explicit Guarded(T value) : value_(std::move(value)) {}

    /// Calls `function` with the value under the lock. Keep the function short, and emit no signal in it.
    template <typename Function>
    auto with(Function &&function) {
        const std::lock_guard<std::mutex> lock(mutex_);
        return std::forward<Function>(function)(value_);
    }
    template <typename Function>
    auto with(Function &&function) const {
        const std::lock_guard<std::mutex> lock(mutex_);
        return std::forward<Function>(function)(value_);
    }

    [[nodiscard]] T copy() const {
        const std::lock_guard<std::mutex> lock(mutex_);
        return value_;
    }

    /// Stores `value` and returns the old value.
    T exchange(T value) {
        const std::lock_guard<std::mutex> lock(mutex_);
        return std::exchange(value_, std::move(value));
    }

private:
    mutable std::mutex mutex_;
    T value_;
};
