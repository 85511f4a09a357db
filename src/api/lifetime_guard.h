#pragma once

#include <mutex>
#include <shared_mutex>

/// Protects an object that a thread uses and another thread destroys. Threads share the ownership of the guard, so it
/// can be used after the object is destroyed. Thread-safe.
///
/// A connection thread that hangs in the file system may outlive the objects of the API, see
/// HttpListener::leftThreadCount(). It must use them only through a guard from then on.
class LifetimeGuard {
public:
    /// Calls `function`, unless close() was called before. Returns whether it was called. `function` must not call
    /// close(), and must not wait for the thread that calls it.
    template <typename Function>
    [[nodiscard]] bool use(const Function &function) {
        const std::shared_lock<std::shared_mutex> lock(mutex_);
        if (!isClosed_)
            function();
        return !isClosed_;
    }

    /// Waits for all running functions, and refuses later ones. The object may be destroyed afterwards.
    void close() {
        const std::unique_lock<std::shared_mutex> lock(mutex_);
        isClosed_ = true;
    }

private:
    std::shared_mutex mutex_;  ///< guards isClosed_, and is held while a function runs
    bool isClosed_ = false;
};
