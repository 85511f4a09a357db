#pragma once

#include "core/eyetracker_interface.h"
#include "trackers/eyetech/eyetech_record_reader.h"

#include <QFuture>
#include <QFutureWatcher>
#include <QTimer>
#include <memory>
#include <vector>

class EyetechCalibrationWidget;
class EyetechDeviceQuestion;
class EyetechSettings;

/// The back-end for EyeTech trackers, which uses the vendor's QuickLink2 library.
///
/// Created and owned by the main window. A timer looks for a device and polls its status. A task on the global thread
/// pool fetches one frame at a time. The task does not access this object, and the destructor does not wait for it,
/// because the library's call may block for 10 s. Everything else runs on the GUI thread.
///
/// If several devices are attached, and no console can answer which one to use, an EyetechDeviceQuestion asks. It is
/// shown only between start() and stop(), while the user has selected this tracker.
///
/// Owns its settings, this question and its calibration screen. The last screen is kept, open or closed, until the next
/// one replaces it or the tracker is destroyed. If its calibration is still running further up the call stack, the
/// screen lives until that calibration returns.
class EyetechGrabber : public EyetrackerInterface {
    Q_OBJECT

public:
    EyetechGrabber(const QString &dataFolder, QObject *parent);
    ~EyetechGrabber() override;

    [[nodiscard]] QString name() const override { return QStringLiteral("eyetech"); }
    [[nodiscard]] QString manufacturer() const override { return QStringLiteral("EyeTech"); }
    [[nodiscard]] VTSettings *settings() override;
    [[nodiscard]] QWidget *createViewWidget() override;
    [[nodiscard]] QString connectionProblem() const override;

    /// Cancels a running calibration, stops the device and looks for devices again, because a device may have a new id
    /// after it was plugged in again. Prefers the device that was used before, and applies its last calibration. If
    /// that fails, or if a later calibration has overwritten it without success, emits calibrationFinished(Failed).
    /// Loads the vendor's library if it could not be loaded before. Asks again which of several devices to use, if the
    /// user has closed the question.
    ///
    /// Does not wait for a task that still fetches a frame. The next frame is fetched after that task has ended.
    void reconnect() override;

    /// Returns 0 while no device is chosen.
    [[nodiscard]] int deviceId() const { return deviceId_; }

Q_SIGNALS:
    /// Emitted for every frame, between newData() and newSample(). Also emitted once, one second after the tracker was
    /// created, with the last frame or an empty one.
    void newFrame(QLFrameData frame);

public Q_SLOTS:
    bool start() override;
    void stop() override;
    /// Shows the calibration screen over `area`, and processes events until the calibration has ended. Does nothing if
    /// no device is chosen. If a calibration is already running, cancels it and returns at once. The function that runs
    /// the old calibration then runs the new one, so nested calls do not accumulate on the call stack.
    ///
    /// A click on "Recalibrate" starts another calibration on the same screen. calibrationFinished() is emitted once
    /// for each calibration. When the screen is closed after that, the signal is not emitted again.
    void calibrate(QRect area) override;
    void stopCalibration() override;
    [[nodiscard]] QLFrameData getLastFrame() const { return lastFrame_; }

private:
    void buildSettings();
    void buildPolling();
    void findLibrary();
    void selectDevice();
    void useDevice(int device);
    void restoreCalibration();
    [[nodiscard]] bool applyCalibration(int calibrationId);
    void askForDevice();
    void closeDeviceQuestion();
    void takeTimings();
    void storeCalibratedArea();

    void poll();
    [[nodiscard]] bool findDevice();
    void fetchFrame();
    void takeFrame();
    void warnOfInvalidImage();

    void openCalibrationWidget(QRect area);
    void closeCalibrationWidget();
    void runCalibration();

    QLFrameData lastFrame_;
    int deviceId_ = 0;
    QString serialNumber_;                             ///< of the last used device
    bool wasCalibrated_ = false;                       ///< a calibration was applied to it
    int calibrationId_ = 0;                            ///< of that calibration; 0 if it was overwritten since then
    std::vector<int> undecided_;                       ///< the devices of which the user must choose one
    std::unique_ptr<EyetechDeviceQuestion> question_;  ///< about `undecided_`; hidden if the user has closed it
    std::shared_ptr<EyetechCalibrationWidget> calibrationWidget_;
    bool isCalibrating_ = false;  ///< a calibration is running further up the call stack
    QTimer pollTimer_;
    QFuture<QLFrameData> frameFuture_;
    QFutureWatcher<QLFrameData> frameWatcher_;
    bool frameAwaited_ = false;  ///< from the start of a frame task until its frame is taken
    bool startRequested_ = false;
    bool mayAsk_ = false;  ///< the question about several devices may be shown
    bool lastImageInvalid_ = false;
    EyetechSettings *eyetechSettings_ = nullptr;
};
