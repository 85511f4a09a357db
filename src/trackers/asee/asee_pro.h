#pragma once

#include "core/eyetracker_interface.h"
#include "trackers/asee/frame_buffer.h"

#include <QImage>
#include <atomic>

class aSeeProSettings;
class CalibrationWidget;

/// aSee Pro trackers, through the vendor's library, which delivers gaze records and camera images on threads of its
/// own. What comes in is turned into samples and given to the base class there; see LiveObjects for how a call that
/// comes too late ends.
///
/// Created and owned by the main window, and used on the GUI thread. Owns its settings and, from the first calibrate()
/// to stopCalibration(), the calibration screen. Without the library it starts as a device that gives error -1.
class aSeePro : public EyetrackerInterface {
    Q_OBJECT

public:
    /// Copies the model files and the coefficients that are delivered beside the program into `dataFolder`, as far as
    /// they are not there yet, and stops the device, so that it is in a known state.
    aSeePro(const QString &dataFolder, QObject *parent);
    ~aSeePro() override;

    [[nodiscard]] QString name() const override { return QStringLiteral("aSee Pro"); }
    [[nodiscard]] VTSettings *settings() override;
    /// An aSeeProPreviewWidget.
    [[nodiscard]] QWidget *createViewWidget() override;

    /// Whether camera images are copied; else they are dropped. Off at first.
    void setPreviewEnabled(bool on) { previewEnabled_ = on; }
    /// A copy of the last camera image; null before the first. Any thread.
    [[nodiscard]] QImage previewImage() const { return frameBuffer_.image(); }

Q_SIGNALS:
    /// A camera image was copied; emitted on the library's thread.
    void previewImageReady();

public Q_SLOTS:
    /// True when samples are asked for, whatever the device makes of it. An error of the connection is shown in a
    /// modal box; without coefficients of a calibration it is false. Once it was true it is true at once.
    bool start() override;
    /// Stops the device, and changes neither the connected state nor what start() does next: that is intended.
    void stop() override;
    /// Shows the calibration screen, on the screen that the area begins on.
    void calibrate(QRect area) override;
    void stopCalibration() override;

private:
    static void onImage(const unsigned char *image, int size, int width, int height, long long stamp, void *context);
    static void onGaze(const void *record, void *context);

    void copyDeliveredFiles() const;
    bool startTracking();
    void takeImage(const unsigned char *image, int size, int width, int height, long long stamp);
    void takeGaze(const void *record);

    const QString folder_;  ///< the data folder, with a slash at its end
    aSeeProSettings *settings_;
    bool started_ = false;
    std::atomic<bool> previewEnabled_{false};
    FrameBuffer frameBuffer_;
    /// Null without a calibration screen. The library's threads reach it through LiveObjects alone.
    std::atomic<CalibrationWidget *> calibrationWidget_{nullptr};
};
