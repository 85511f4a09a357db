#pragma once

#include "trackers/eyetech/eyetech_calibration_layout.h"
#include "trackers/eyetech/eyetech_settings.h"

#include <QObject>
#include <optional>
#include <vector>

namespace eyetech {

/// The durations of the steps of a calibration.
struct CalibrationTimings {
    int animationMs;    ///< maximum duration of the movement to a target
    int delayMs;        ///< maximum delay between the movement and the measurement
    int calibrationMs;  ///< duration of the measurement
};

/// How a calibration ended.
enum class CalibrationOutcome {
    Done,  ///< all targets are measured
    Cancelled,
    NotStarted,  ///< the device refused to start
    NoTargets,   ///< the device did not return its targets
    DeviceLost,
    NotApplied,  ///< all targets are measured, but the device refused the calibration
};

/// Calibrates a device: shows one target after another, has the device measure each of them, and reads the scores.
///
/// Owned by the calibration screen, which paints targetPosition() while isBusy(), and targets() afterwards. GUI thread.
/// run() processes events while it waits, so stop() and cancel() may be called during run(), which then returns soon.
class CalibrationSequence : public QObject {
    Q_OBJECT

public:
    /// The timings of all calibrations. A change takes effect at the next step.
    static CalibrationTimings timings;

    explicit CalibrationSequence(EyetechSettings::CalibrationType type) : type_(type) {}

    /// Runs a calibration on a window of the size `area`. If it is not done, cancels it on the device. Never returns
    /// `NotApplied`.
    [[nodiscard]] CalibrationOutcome run(int device, QSize area);
    /// Makes run() cancel the calibration and return.
    void stop() { isCancelled_ = true; }
    /// Cancels the calibration on the device, and makes run() return.
    void cancel();
    /// Completes the calibration on the device.
    void finalize();

    [[nodiscard]] int calibrationId() const { return calibrationId_; }
    /// Returns whether targets are still being measured. True before the first run().
    [[nodiscard]] bool isBusy() const { return isBusy_; }
    [[nodiscard]] QPoint targetPosition() const { return targetPosition_; }
    /// Returns whether the device has refused the current target several times.
    [[nodiscard]] bool isTargetRefused() const;
    /// Returns one entry for each measurement, with the scores after a successful run().
    [[nodiscard]] const std::vector<calibration_layout::Target> &targets() const { return targets_; }

Q_SIGNALS:
    /// Emitted when targetPosition() or isTargetRefused() has changed. The receiver must repaint at once.
    void targetMoved();

private:
    using DeviceTargets = std::vector<quicklink2::QLTarget>;

    [[nodiscard]] CalibrationOutcome runSteps();
    [[nodiscard]] bool initialize();
    [[nodiscard]] std::optional<DeviceTargets> fetchTargets() const;
    [[nodiscard]] bool runTargets(const DeviceTargets &targets);
    [[nodiscard]] bool runTarget(const quicklink2::QLTarget &target);
    [[nodiscard]] bool measure(const quicklink2::QLTarget &target);
    void countRefusal(const quicklink2::QLTarget &target);
    void addMeasurement(const quicklink2::QLTarget &target, QPoint position);
    void moveTo(QPoint position);
    void waitForResult(const quicklink2::QLTarget &target);
    [[nodiscard]] bool continues();
    void readScores(const DeviceTargets &targets);

    const EyetechSettings::CalibrationType type_;
    int calibrationId_ = 0;
    bool isCancelled_ = false;
    bool isDeviceLost_ = false;
    int refusalCount_ = 0;  ///< failed measurements of the current target
    bool isBusy_ = true;
    int device_ = 0;
    QSize area_;
    QPoint targetPosition_{0, 0};
    std::vector<calibration_layout::Target> targets_;
};

}  // namespace eyetech
