#include "trackers/eyetech/eyetech_calibration_sequence.h"

#include "toolkit/platform/console.h"
#include "trackers/eyetech/eyetech_library.h"
#include "trackers/eyetech/eyetech_log.h"

#include <QEventLoop>
#include <QTimer>
#include <algorithm>

using eyetech::CalibrationOutcome;
using eyetech::CalibrationSequence;
using quicklink2::QLScore;
using quicklink2::QLTarget;

namespace layout = eyetech::calibration_layout;

namespace {

constexpr int maxTargetCount = 20;
constexpr int minDelayMs = 100;
constexpr int minCalibrationMs = 500;
constexpr int resultPollMs = 10;
/// The number of failed measurements after which the screen tells the user that the device refuses the target.
constexpr int minReportedRefusalCount = 3;
/// Limits the memory if the device fails at every measurement.
constexpr std::size_t maxMeasurementCount = 1000;

void print(const char *format, int value) {
    console::print(QString::asprintf(format, value).toStdString());
}

/// Processes pending events for at most `maxMs`. Returns at once if there are none, so the animation may be shorter
/// than its setting: that is intended.
void processEvents(int maxMs) {
    QEventLoop().processEvents(QEventLoop::AllEvents, maxMs);
}

/// Processes events for `ms`. Returns false if the program is exiting, because event loops then return at once.
bool waitWithEvents(int ms) {
    constexpr int timeout = 1;
    QEventLoop loop;
    QTimer::singleShot(ms, &loop, [&loop] { loop.exit(timeout); });
    return loop.exec() == timeout;
}

int targetStatus(int calibration, int target) {
    constexpr int unknown = -1;
    int status = unknown;
    return quicklink2::QLCalibration_GetStatus(calibration, target, &status) == 0 ? status : unknown;
}

QLScore scoreOf(int calibration, int target, int eye) {
    QLScore score{};
    quicklink2::QLCalibration_GetScoring(calibration, target, eye, &score);
    return score;
}

}  // namespace

eyetech::CalibrationTimings CalibrationSequence::timings{1000, 1000, 2000};

CalibrationOutcome CalibrationSequence::run(int device, QSize area) {
    isBusy_ = true;
    isCancelled_ = false;
    isDeviceLost_ = false;
    device_ = device;
    area_ = area;
    const CalibrationOutcome outcome = runSteps();
    if (outcome != CalibrationOutcome::Done)
        cancel();
    return outcome;
}

CalibrationOutcome CalibrationSequence::runSteps() {
    if (!initialize())
        return CalibrationOutcome::NotStarted;
    const std::optional<DeviceTargets> targets = fetchTargets();
    if (!targets)
        return CalibrationOutcome::NoTargets;
    if (!runTargets(*targets))
        return isDeviceLost_ ? CalibrationOutcome::DeviceLost : CalibrationOutcome::Cancelled;
    isBusy_ = false;
    readScores(*targets);
    return CalibrationOutcome::Done;
}

// Only the result `badArgument` is treated as a failure: that is intended.
bool CalibrationSequence::initialize() {
    const auto call = [this] { return quicklink2::QLCalibration_Initialize(device_, calibrationId_, type_); };
    int result = call();
    if (result == quicklink2::unknownCalibration) {
        quicklink2::QLCalibration_Create(0, &calibrationId_);
        result = call();
    }
    if (result == quicklink2::badArgument)
        print("QLCalibration_Initialize() failed with error code %d.\n", result);
    return result != quicklink2::badArgument;
}

std::optional<CalibrationSequence::DeviceTargets> CalibrationSequence::fetchTargets() const {
    int count = maxTargetCount;
    DeviceTargets targets(maxTargetCount);
    const int result = quicklink2::QLCalibration_GetTargets(calibrationId_, &count, targets.data());
    if (result == quicklink2::bufferTooSmall)
        print("The target buffer is too small. It should be at least %d bytes.\n",
              static_cast<int>(static_cast<unsigned>(count) * sizeof(QLTarget)));
    if (result != 0) {
        qCWarning(lcEyetech, "The calibration has failed: QLCalibration_GetTargets returned %d", result);
        return {};
    }
    targets.resize(static_cast<std::size_t>(std::clamp(count, 0, maxTargetCount)));
    return targets;
}

bool CalibrationSequence::runTargets(const DeviceTargets &targets) {
    targets_.clear();
    return std::all_of(targets.begin(), targets.end(), [this](const QLTarget &target) { return runTarget(target); });
}

/// Repeats the measurement until it succeeds or the device is lost. The wait between two attempts limits the rate if
/// the device fails at once.
bool CalibrationSequence::runTarget(const QLTarget &target) {
    refusalCount_ = 0;
    bool isDone = measure(target);
    while (!isDone && continues()) {
        countRefusal(target);
        if (!waitWithEvents(resultPollMs))
            return false;
        isDone = measure(target);
    }
    return isDone;
}

void CalibrationSequence::countRefusal(const QLTarget &target) {
    if (isTargetRefused())
        return;
    ++refusalCount_;
    if (!isTargetRefused())
        return;
    qCWarning(lcEyetech, "The device keeps refusing the calibration target %d", target.id);
    Q_EMIT targetMoved();
}

bool CalibrationSequence::isTargetRefused() const {
    return refusalCount_ >= minReportedRefusalCount;
}

bool CalibrationSequence::measure(const QLTarget &target) {
    const QPoint position = layout::targetCentre(area_, target.x, target.y);
    addMeasurement(target, position);
    moveTo(position);
    processEvents(std::max(timings.delayMs, minDelayMs));
    // Called even if the calibration was cancelled during the movement: that is intended.
    quicklink2::QLCalibration_Calibrate(calibrationId_, target.id, std::max(timings.calibrationMs, minCalibrationMs),
                                        false);
    waitForResult(target);
    return !isCancelled_ && targetStatus(calibrationId_, target.id) == quicklink2::targetDone;
}

void CalibrationSequence::addMeasurement(const QLTarget &target, QPoint position) {
    if (targets_.size() < maxMeasurementCount)
        targets_.push_back({position, target.x, target.y});
}

void CalibrationSequence::moveTo(QPoint position) {
    const QPoint distance = position - targetPosition_;
    // A repeated target does not move.
    const int stepCount = distance.isNull() ? 0 : layout::animationStepCount(timings.animationMs);
    for (int i = 0; i < stepCount && !isCancelled_; ++i) {
        targetPosition_ += QPoint(distance.x() / stepCount, distance.y() / stepCount);
        Q_EMIT targetMoved();
        processEvents(layout::animationStepMs);
    }
    targetPosition_ = position;
    Q_EMIT targetMoved();
}

void CalibrationSequence::waitForResult(const QLTarget &target) {
    while (continues() && targetStatus(calibrationId_, target.id) == quicklink2::targetRunning) {
        if (!waitWithEvents(resultPollMs))
            return;
    }
}

/// Returns false if the calibration was cancelled. Cancels it if the device was lost.
bool CalibrationSequence::continues() {
    if (!isCancelled_ && !isAttached(deviceStatus(device_))) {
        qCWarning(lcEyetech, "The calibration has failed: the device was lost");
        isDeviceLost_ = true;
        isCancelled_ = true;
    }
    return !isCancelled_;
}

// Target i's scores are stored in entry i, although a repeated target has several entries: that is intended.
void CalibrationSequence::readScores(const DeviceTargets &targets) {
    const std::size_t count = std::min(targets.size(), targets_.size());
    for (std::size_t i = 0; i < count; ++i) {
        targets_[i].leftScore = scoreOf(calibrationId_, targets[i].id, quicklink2::leftEye);
        targets_[i].rightScore = scoreOf(calibrationId_, targets[i].id, quicklink2::rightEye);
    }
}

void CalibrationSequence::cancel() {
    isCancelled_ = true;
    quicklink2::QLCalibration_Cancel(calibrationId_);
}

void CalibrationSequence::finalize() {
    quicklink2::QLCalibration_Finalize(calibrationId_);
}
