#pragma once

#include <QtGlobal>
#include <chrono>

/// Tells whether a client sends or reads fast enough. Only time that the server waits for the client counts.
class TransferRate {
public:
    using Clock = std::chrono::steady_clock;

    /// Requires `minBytes` in each `window` of waiting. A window of 0 requires nothing.
    void restart(std::chrono::milliseconds window, qint64 minBytes) {
        window_ = window;
        minBytes_ = minBytes;
        waited_ = {};
        bytes_ = 0;
        tooSlow_ = false;
    }

    /// Adds a wait that began at `begin` and ends now, and the bytes that were transferred in it.
    void addWait(Clock::time_point begin, qint64 bytes) {
        waited_ += Clock::now() - begin;
        bytes_ += bytes;
        if (window_.count() == 0 || waited_ < window_)
            return;
        tooSlow_ = tooSlow_ || bytes_ < minBytes_;
        waited_ = {};
        bytes_ = 0;
    }

    [[nodiscard]] bool isTooSlow() const { return tooSlow_; }
    /// Returns how long to wait until isTooSlow() can change. Returns -1 without a limit.
    [[nodiscard]] qint64 msLeft() const {
        if (window_.count() == 0)
            return -1;
        return 1 + std::chrono::duration_cast<std::chrono::milliseconds>(window_ - waited_).count();
    }

private:
    std::chrono::milliseconds window_{0};
    qint64 minBytes_ = 0;
    Clock::duration waited_{};
    qint64 bytes_ = 0;
    bool tooSlow_ = false;
};
