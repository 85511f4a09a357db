#pragma once

#include "core/eyetracker_interface.h"
#include "trackers/eyetech/frame_data.h"

#include <QFuture>
#include <QFutureWatcher>
#include <QTimer>
#include <memory>

class EyetechCalibrationWidget;
class EyetechSettings;

/// EyeTech trackers, through the vendor's QuickLink2 library.
///
/// Created and owned by the main window. A timer looks for a device and at its status; frames are fetched one at a
/// time by a task on the global thread pool, which knows nothing of this object and is not waited for when it goes:
/// the vendor's call may block for 10 s. Everything else runs on the GUI thread.
///
/// Owns its settings, and its calibration screen: the one opened last is kept, open or closed, until the next one
/// takes its place or the tracker goes. One whose calibration still runs further down the stack lives until that
/// returns.
class EyetechGrabber : public EyetrackerInterface {
    Q_OBJECT

public:
    EyetechGrabber(const QString &dataFolder, QObject *parent);
    ~EyetechGrabber() override;

    [[nodiscard]] QString name() const override { return QStringLiteral("eyetech"); }
    [[nodiscard]] VTSettings *settings() override;
    [[nodiscard]] QWidget *createViewWidget() override;

    /// 0 while no device is chosen.
    [[nodiscard]] int deviceId() const { return deviceId_; }

Q_SIGNALS:
    /// Every frame, after the sample's light form and before the sample; and one empty frame a second after the
    /// tracker was made, so that views have something.
    void newFrame(QLFrameData frame);

public Q_SLOTS:
    bool start() override;
    void stop() override;
    /// Opens the calibration screen over `area` and returns when it has come to its end; events are handled
    /// meanwhile. While a calibration runs it is that one which is closed first, and its call, further down the stack,
    /// which goes on with the new one: calls pile up no stack.
    void calibrate(QRect area) override;
    void stopCalibration() override;
    [[nodiscard]] QLFrameData getLastFrame() const { return lastFrame_; }

private:
    void buildSettings();
    void buildPolling();
    void findLibrary();
    void takeTimings();
    void storeCalibratedArea();

    void poll();
    [[nodiscard]] bool findDevice();
    [[nodiscard]] int deviceStatus() const;
    void fetchFrame();
    void takeFrame();
    void warnOfLostImage();
    [[nodiscard]] EyeTrackingSample sampleOf(const QLFrameData &frame) const;

    void openCalibrationWidget(QRect area);
    void closeCalibrationWidget();
    void runCalibration();

    QLFrameData lastFrame_;
    int deviceId_ = 0;
    std::shared_ptr<EyetechCalibrationWidget> calibrationWidget_;
    bool calibrating_ = false;  ///< a calibration runs further down the stack
    QTimer pollTimer_;
    QFuture<QLFrameData> frameFuture_;
    QFutureWatcher<QLFrameData> frameWatcher_;
    bool frameAwaited_ = false;  ///< from the start of a frame task until its frame is taken
    bool startRequested_ = false;
    bool lostImageSeen_ = false;
    EyetechSettings *eyetechSettings_ = nullptr;
};
