#pragma once

#include "app/status_texts.h"

#include <chrono>

class EyetrackerInterface;

/// Determines the state of a tracker for the status bar. GUI thread.
class TrackerMonitor {
public:
    /// Starts to observe a tracker, which is not owned.
    explicit TrackerMonitor(const EyetrackerInterface &tracker);

    /// Must be called after each change of the connection.
    void connectionChanged();
    /// Must be called after each failed attempt to connect. status() then has its reason instead of "connection lost".
    void connectionFailed() { wasConnected_ = false; }

    /// Returns the current state. Rate and valid share are those of the last two seconds.
    [[nodiscard]] TrackerStatus status() const;

private:
    using Clock = std::chrono::steady_clock;

    const EyetrackerInterface *tracker_;
    Clock::time_point start_ = Clock::now();  ///< last change of the connection; earlier samples do not count
    bool wasConnected_;                       ///< since the last failed attempt to connect
};
