#pragma once

#include "core/eyetracker_interface.h"
#include "trackers/asee/asee_frame_buffer.h"

#include <QImage>
#include <atomic>

class aSeeProSettings;
class CalibrationWidget;

/// The back-end for aSee Pro trackers. The vendor's library delivers gaze records and camera images on its own threads.
/// Each record is converted to a sample and added on that thread. LiveObjects protects against callbacks after the
/// destructor.
///
/// Created and owned by the main window, and used on the GUI thread. Owns its settings and, between calibrate() and
/// stopCalibration(), the calibration screen. If the library is missing, every call of the library fails with error -1.
class aSeePro : public EyetrackerInterface {
    Q_OBJECT

public:
    /// Copies the model files and coefficients from the program's folder, unless they exist in `dataFolder`. Stops the
    /// device, so that it is in a known state.
    aSeePro(const QString &dataFolder, QObject *parent);
    ~aSeePro() override;

    [[nodiscard]] QString name() const override { return QStringLiteral("aSee Pro"); }
    [[nodiscard]] QString model() const override { return QStringLiteral("aSee Pro"); }
    [[nodiscard]] VTSettings *settings() override;
    /// Returns an aSeeProPreviewWidget, which the caller owns.
    [[nodiscard]] QWidget *createViewWidget() override;
    [[nodiscard]] QString connectionProblem() const override;
    /// Stops the device and opens it again, also if start() would do nothing. If the library could not be loaded, first
    /// tries again to load it. A failure is reported only by connectionProblem(). Closes the calibration screen,
    /// because the library ends a calibration when it is stopped.
    void reconnect() override;

    /// Sets whether camera images are copied. The default is false.
    void setPreviewEnabled(bool on) { previewEnabled_ = on; }
    /// Returns a copy of the last camera image, or a null image before the first. Callable from any thread.
    [[nodiscard]] QImage previewImage() const { return frameBuffer_.image(); }

Q_SIGNALS:
    /// Emitted on a thread of the library after a camera image was copied.
    void previewImageReady();

public Q_SLOTS:
    /// Connects to the device and starts tracking. Returns false if the connection fails, if the library does not
    /// start, or if the coefficient file of a calibration cannot be opened. A modal box reports a failed connection.
    /// The result of the call that starts tracking is ignored: that is intended. After a success, further calls do
    /// nothing and return true.
    bool start() override;
    /// Stops the device, but keeps the connection state. If start() has succeeded before, a later start() does not
    /// start the device again. Both are intended; reconnect() starts it.
    void stop() override;
    /// Shows the calibration screen on the screen that contains the top-left corner of `area`. If the calibration
    /// screen is already visible for this area, only brings it to the front, also if it is minimised. If it is visible
    /// for another area, its calibration is cancelled.
    void calibrate(QRect area) override;
    void stopCalibration() override;

private:
    /// The step at which open() failed.
    struct Obstacle {
        enum At { None, Connection, Start, Coefficients };

        [[nodiscard]] QString logText() const;

        At at = None;
        int error = 0;  ///< the library's error code
    };

    static void onImage(const unsigned char *image, int size, int width, int height, long long stamp, void *context);
    static void onGaze(const void *record, void *context);

    void copyInstalledFiles() const;
    void open();
    [[nodiscard]] Obstacle tryToOpen();
    [[nodiscard]] bool startTracking();
    void closeCalibrationScreen();
    void takeImage(const unsigned char *image, int size, int width, int height, long long stamp);
    void takeGaze(const void *record);

    const QString folder_;  ///< the data folder, with a slash at its end
    aSeeProSettings *settings_;
    bool started_ = false;
    Obstacle obstacle_;  ///< of the last open()
    std::atomic<bool> previewEnabled_{false};
    asee::FrameBuffer frameBuffer_;
    /// Null without a calibration screen. Threads of the library access it only through LiveObjects.
    std::atomic<CalibrationWidget *> calibrationWidget_{nullptr};
};
