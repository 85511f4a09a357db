#pragma once

#include <QtGlobal>
#include <chrono>

/// Tells whether a client sends or reads fast enough. Only time that the server waits for the client counts.
class TransferRate {
public:
    using Clock = std::chrono::steady_clock;

    /// Requires `minBytes` in each `window` of waiting. A window of 0 requires nothing. The first window also counts
    /// the bytes since the end of the last window.
    void restart(std::chrono::milliseconds window, qint64 minBytes) {
        window_ = window;
        minBytes_ = minBytes;
        waited_ = {};
        tooSlow_ = false;
    }

    /// Adds a wait that began at `begin` and ends now. At the end of a window, calls `totalBytes` for the number of all
    /// bytes that were transferred since the object was created.
    template <typename TotalBytes>
    void addWait(Clock::time_point begin, const TotalBytes &totalBytes) {
        waited_ += Clock::now() - begin;
        if (window_.count() == 0 || waited_ < window_)
            return;
        const qint64 total = totalBytes();
        tooSlow_ = tooSlow_ || total - earlierTotal_ < minBytes_;
        earlierTotal_ = total;
        waited_ = {};
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
    qint64 earlierTotal_ = 0;  ///< at the end of the last window
    bool tooSlow_ = false;
};
