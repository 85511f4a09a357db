#include "eyetech/library.h"
#include "eyetech/results.h"

#include <QString>
#include <algorithm>
#include <chrono>
#include <thread>

namespace sim::eyetech {

namespace {

constexpr int distractedTarget = 2;
constexpr Point distraction{-0.15, 0.1};
constexpr int excessiveTargetCount = 30;
constexpr auto blockingPollInterval = std::chrono::milliseconds(10);

}  // namespace

std::shared_ptr<Calibration> Library::calibration(int id) {
    const std::lock_guard lock(mutex_);
    const auto found = calibrations_.find(id);
    return found != calibrations_.end() ? found->second : nullptr;
}

int Library::addCalibration(const std::shared_ptr<Calibration> &calibration) {
    const std::lock_guard lock(mutex_);
    calibrations_[++lastId_] = calibration;
    return lastId_;
}

int Library::QLCalibration_Load(const char *path, int *calibration) {
    if (path == nullptr || calibration == nullptr)
        return BadArgument;
    const auto loaded = std::make_shared<Calibration>();
    if (!loaded->load(QString::fromLocal8Bit(path)))
        return FileError;
    *calibration = addCalibration(loaded);
    return Ok;
}

int Library::QLCalibration_Save(const char *path, int calibration) {
    const auto saved = this->calibration(calibration);
    if (!saved)
        return UnknownCalibration;
    if (path == nullptr)
        return BadArgument;
    return saved->save(QString::fromLocal8Bit(path)) ? Ok : FileError;
}

/// Creates an empty calibration, or a copy of `source` if that is not 0.
int Library::QLCalibration_Create(int source, int *calibration) {
    if (calibration == nullptr)
        return BadArgument;
    const auto original = source == 0 ? std::make_shared<Calibration>() : this->calibration(source);
    if (!original)
        return UnknownCalibration;
    *calibration = addCalibration(std::make_shared<Calibration>(*original));
    return Ok;
}

int Library::QLCalibration_Initialize(int device, int calibration, int type) {
    const auto found = this->calibration(calibration);
    if (!found)
        return UnknownCalibration;
    return unit(device) != nullptr && found->initialize(device, type, options()) ? Ok : BadArgument;
}

int Library::QLCalibration_GetTargets(int calibration, int *count, quicklink2::QLTarget *targets) {
    const auto found = this->calibration(calibration);
    if (!found)
        return UnknownCalibration;
    if (count == nullptr || targets == nullptr)
        return BadArgument;
    const std::vector<quicklink2::QLTarget> places = found->targets();
    const int needed = options().has("small-target-buffer") ? excessiveTargetCount : static_cast<int>(places.size());
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
    const Answer<Point> place = found->start(target, std::chrono::milliseconds(milliseconds));
    if (place.result != Ok)
        return place.result;
    const bool distracted = target == distractedTarget && options().has("distracted");
    person_.lookAt(place.value + (distracted ? distraction : Point()));
    measuring->device.calibrate(found);
    while (block && found->status(target) == TargetStatus::Running)
        std::this_thread::sleep_for(blockingPollInterval);
    return Ok;
}

int Library::QLCalibration_GetScoring(int calibration, int target, int eye, quicklink2::QLScore *score) {
    const auto found = this->calibration(calibration);
    if (!found)
        return UnknownCalibration;
    if (score == nullptr)
        return BadArgument;
    const Answer<quicklink2::QLScore> answer = found->score(target, eye);
    if (answer.result == Ok)
        *score = answer.value;
    return answer.result;
}

int Library::QLCalibration_GetStatus(int calibration, int target, int *status) {
    const auto found = this->calibration(calibration);
    if (!found)
        return UnknownCalibration;
    const auto targetStatus = found->status(target);
    if (!targetStatus || status == nullptr)
        return BadArgument;
    *status = *targetStatus;
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
