#include "eyetech/library.h"
#include "eyetech/results.h"

#include <QString>
#include <algorithm>
#include <chrono>
#include <thread>

namespace sim::eyetech {

namespace {

constexpr int kDistractedTarget = 2;
constexpr Point kDistraction{-0.15, 0.1};
constexpr int kAbsurdTargetCount = 30;
constexpr auto kBlockingPoll = std::chrono::milliseconds(10);

}  // namespace

std::shared_ptr<Calibration> Library::calibration(int id) {
    const std::lock_guard lock(mutex_);
    const auto found = calibrations_.find(id);
    return found != calibrations_.end() ? found->second : nullptr;
}

int Library::addCalibration(const std::shared_ptr<Calibration> &calibration, int *id) {
    const std::lock_guard lock(mutex_);
    *id = ++lastId_;
    calibrations_[*id] = calibration;
    return Ok;
}

int Library::QLCalibration_Load(const char *path, int *calibration) {
    if (path == nullptr || calibration == nullptr)
        return BadArgument;
    const auto loaded = std::make_shared<Calibration>();
    return loaded->load(QString::fromLocal8Bit(path)) ? addCalibration(loaded, calibration) : FileError;
}

int Library::QLCalibration_Save(const char *path, int calibration) {
    const auto saved = this->calibration(calibration);
    if (!saved)
        return UnknownCalibration;
    if (path == nullptr)
        return BadArgument;
    return saved->save(QString::fromLocal8Bit(path)) ? Ok : FileError;
}

/// A new one, or a copy of `source` if that is not 0.
int Library::QLCalibration_Create(int source, int *calibration) {
    if (calibration == nullptr)
        return BadArgument;
    if (source == 0)
        return addCalibration(std::make_shared<Calibration>(), calibration);
    const auto original = this->calibration(source);
    return original ? addCalibration(std::make_shared<Calibration>(*original), calibration) : UnknownCalibration;
}

int Library::QLCalibration_Initialize(int device, int calibration, int type) {
    const auto found = this->calibration(calibration);
    if (!found)
        return UnknownCalibration;
    return unit(device) != nullptr && found->initialize(device, type, options()) ? Ok : BadArgument;
}

int Library::QLCalibration_GetTargets(int calibration, int *count, QLTarget *targets) {
    const auto found = this->calibration(calibration);
    if (!found)
        return UnknownCalibration;
    if (count == nullptr || targets == nullptr)
        return BadArgument;
    const std::vector<QLTarget> places = found->targets();
    const int needed = options().has("small-target-buffer") ? kAbsurdTargetCount : static_cast<int>(places.size());
    if (std::exchange(*count, needed) < needed)
        return BufferTooSmall;
    std::copy(places.begin(), places.end(), targets);
    *count = static_cast<int>(places.size());
    return Ok;
}

int Library::QLCalibration_Calibrate(int calibration, int target, int milliseconds, bool block) {
    const auto found = this->calibration(calibration);
    if (!found)
        return UnknownCalibration;
    Unit *const measuring = unit(found->device());
    if (measuring == nullptr || milliseconds <= 0)
        return BadArgument;
    if (!measuring->device.running())
        return NotRunning;
    Point place;
    if (const int result = found->begin(target, std::chrono::milliseconds(milliseconds), &place); result != Ok)
        return result;
    const bool distracted = target == kDistractedTarget && options().has("distracted");
    person_.lookAt(place + (distracted ? kDistraction : Point()));
    measuring->device.calibrate(found);
    while (block && found->status(target) == TargetStatus::Running)
        std::this_thread::sleep_for(kBlockingPoll);
    return Ok;
}

int Library::QLCalibration_GetScoring(int calibration, int target, int eye, QLScore *score) {
    const auto found = this->calibration(calibration);
    if (!found)
        return UnknownCalibration;
    return score != nullptr ? found->score(target, eye, score) : BadArgument;
}

int Library::QLCalibration_GetStatus(int calibration, int target, int *status) {
    const auto found = this->calibration(calibration);
    if (!found)
        return UnknownCalibration;
    const auto told = found->status(target);
    if (!told || status == nullptr)
        return BadArgument;
    *status = *told;
    return Ok;
}

int Library::QLCalibration_Finalize(int calibration) {
    const auto found = this->calibration(calibration);
    if (!found)
        return UnknownCalibration;
    person_.release();
    return found->complete() ? Ok : NotCalibrated;
}

int Library::QLCalibration_Cancel(int calibration) {
    const auto found = this->calibration(calibration);
    if (!found)
        return UnknownCalibration;
    person_.release();
    found->cancel();
    return Ok;
}

int Library::QLCalibration_AddBias(int calibration, int eye, float x, float y) {
    const auto found = this->calibration(calibration);
    if (!found)
        return UnknownCalibration;
    if (eye < 0 || eye > 1)
        return BadArgument;
    found->addBias(eye, {static_cast<double>(x), static_cast<double>(y)});
    return Ok;
}

}  // namespace sim::eyetech
