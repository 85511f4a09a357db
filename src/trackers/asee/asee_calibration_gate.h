#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace asee {

/// The waits of the calibration sequence. The device's callbacks end them with finishPoint(), and the screen with
/// cancel(). The sequence and the screen share it. Thread-safe.
class CalibrationGate {
public:
    /// Clears the cancellation. Called before a calibration starts.
    void reset();
    /// Cancels the calibration. All waits return at once until reset().
    void cancel();
    [[nodiscard]] bool isCancelled() const;

    /// Clears an earlier finishPoint(). Called before the device measures a point, because the device may finish before
    /// waitForPoint() is called.
    void expectPoint();
    /// Ends waitForPoint(): the device has measured the point.
    void finishPoint();

    /// Waits for finishPoint(), without a timeout. Returns false if the calibration is cancelled.
    [[nodiscard]] bool waitForPoint();
    /// Waits for `time`. Returns false if the calibration is cancelled.
    [[nodiscard]] bool pause(std::chrono::milliseconds time);

private:
    mutable std::mutex mutex_;  // guards the members below
    std::condition_variable changed_;
    bool cancelRequested_ = false;
    bool isPointDone_ = false;
};

}  // namespace asee
