#include "trackers/asee/asee_calibration_gate.h"

using asee::CalibrationGate;
using Lock = std::unique_lock<std::mutex>;

void CalibrationGate::reset() {
    const Lock lock(mutex_);
    cancelRequested_ = false;
}

void CalibrationGate::cancel() {
    const Lock lock(mutex_);
    cancelRequested_ = true;
    changed_.notify_all();
}

bool CalibrationGate::isCancelled() const {
    const Lock lock(mutex_);
    return cancelRequested_;
}

void CalibrationGate::expectPoint() {
    const Lock lock(mutex_);
    isPointDone_ = false;
}

void CalibrationGate::finishPoint() {
    const Lock lock(mutex_);
    isPointDone_ = true;
    changed_.notify_all();
}

bool CalibrationGate::waitForPoint() {
    Lock lock(mutex_);
    changed_.wait(lock, [this] { return isPointDone_ || cancelRequested_; });
    return !cancelRequested_;
}

bool CalibrationGate::pause(std::chrono::milliseconds time) {
    Lock lock(mutex_);
    return !changed_.wait_for(lock, time, [this] { return cancelRequested_; });
}
