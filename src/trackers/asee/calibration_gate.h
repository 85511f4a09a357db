#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

/// Where the calibration's worker waits, and how it is told to go on or to give up. Shared by the worker and the
/// calibration screen; any thread may call anything.
class CalibrationGate {
public:
    /// Before a calibration: nobody has given it up yet.
    void reset();
    /// Gives the calibration up: every wait ends at once, until reset().
    void cancel();
    [[nodiscard]] bool isCancelled() const;

    /// Before a point is begun. A finish that comes before the worker waits for it is not lost.
    void expectPoint();
    void finishPoint();

    /// Wait for the point to finish, without a limit, or for a time. False when the calibration is given up.
    [[nodiscard]] bool waitForPoint();
    [[nodiscard]] bool pause(std::chrono::milliseconds time);

private:
    mutable std::mutex mutex_;  // guards all below
    std::condition_variable pointDone_;
    bool cancelRequested_ = false;
    bool isPointDone_ = false;
};
