#pragma once

#include "core/eye_tracking_sample.h"
#include "core/guarded.h"
#include "core/sample_window.h"
#include "toolkit/connection_helper.h"

#include <QObject>
#include <QPoint>
#include <QRect>
#include <atomic>
#include <memory>

class EyeTrackingCSV;
class VTSettings;
class QWidget;

/// A tracker: the one face that the rest of the program sees of a device family.
///
/// A back-end implements the seven pure virtual operations, delivers samples through addSample() alone and
/// reports its connection through setConnected() alone. The base keeps the samples of the last two seconds,
/// the running record, the calibrated area and the connection state.
///
/// Trackers are created by the main window, live on the GUI thread for the whole run, and are started and
/// stopped there. addSample(), getSamples(), getLastSample(), isConnected() and calibratedArea() may be
/// called from any thread; all else belongs to the GUI thread (from elsewhere: QMetaObject::invokeMethod). A back-end
/// whose device delivers on a thread of its own ends that before it is destroyed.
class EyetrackerInterface : public QObject {
    Q_OBJECT

public:
    /// What the pixel fields of this tracker's samples count. The two differ under display scaling only.
    enum class PixelUnit {
        Desktop,  ///< pixels as the desktop's geometry has them, as the calibrated area is given in
        Device,   ///< the screen's own pixels, as a tracker counts them that asked the system itself
    };

    /// Age in ms of the oldest sample that is kept beside the newest.
    static constexpr qint32 sampleWindowMs = 2000;

    /// `dataFolder` is where the back-end keeps its own settings and calibration files.
    EyetrackerInterface(const QString &dataFolder, QObject *parent);
    ~EyetrackerInterface() override;

    /// Short device name, shown to the user and stored as the choice of tracker.
    [[nodiscard]] virtual QString name() const = 0;
    /// The back-end's settings, owned by it; null when it has none.
    [[nodiscard]] virtual VTSettings *settings() = 0;
    /// A new camera view for the caller to own; null when the device shows none.
    [[nodiscard]] virtual QWidget *createViewWidget() = 0;

Q_SIGNALS:
    /// A gaze update in percent, lighter than a sample; not every back-end has it.
    void newData(bool valid, double x, double y);
    /// Every sample, on the thread that delivers it, before it is stored.
    void newSample(EyeTrackingSample sample);
    /// A calibration ended well; not every back-end learns of it.
    void calibrated();
    void recordStarted();
    /// A record was closed; `path` is the file it was to be written to. A write that failed is in the log
    /// only.
    void recordStopped(QString path);
    /// The calibration screen is to close.
    void stopCalibrationRequest();
    /// The connection came or went; on the GUI thread.
    void connected();
    void disconnected();
    void connectedChanged(bool connected);

public Q_SLOTS:
    /// Opens the device and begins to deliver samples. False when that is known to have failed.
    virtual bool start() = 0;
    virtual void stop() = 0;
    /// Runs the device's calibration over `area`, in global desktop pixels.
    virtual void calibrate(QRect area) = 0;
    virtual void stopCalibration() = 0;
    /// Calibrates on a screen, counted from 0. An index that no screen has does nothing.
    void calibrateScreen(int screenIndex);
    void setCalibratedArea(int x, int y, int w, int h);
    void setCalibratedArea(QRect area);
    /// Starts a record that stopRecord() will write to `path`; a record that runs is closed first. An empty
    /// path chooses <documents>/Ocela/<date and time>_ocela.csv. The folder is not created here. Always true:
    /// a path that cannot be written shows when the record is saved.
    bool startRecord(QString path = QString());
    /// Writes the running record to its file, on the calling thread. False when none runs.
    bool stopRecord();
    /// The samples of the last two seconds, oldest first. The list is made at the first call after a sample (0.1 ms
    /// for 2000 samples) and shared by the calls until the next one.
    QList<EyeTrackingSample> getSamples();
    /// The newest sample; all zero before the first.
    EyeTrackingSample getLastSample();
    bool isConnected() const { return connected_; }

public:
    /// Delivers a sample: emits it, puts it into the window and into the running record.
    ///
    /// The window is bounded by time alone: by the samples' stamps or, where a device stamps all alike, by when they
    /// arrived.
    void addSample(const EyeTrackingSample &sample);

    /// Whether a record runs.
    [[nodiscard]] bool isRecording();

    /// Stores the connection state and reports a change of it.
    void setConnected(bool value);

    /// The pixel of the calibrated area, from its top-left corner, at a point given in percent of it. With
    /// `clamp` the point is moved into the area first.
    [[nodiscard]] QPoint percentToPixels(float x, float y, bool clamp) const;

    [[nodiscard]] QRect calibratedArea() const { return calibratedArea_.copy(); }
    [[nodiscard]] PixelUnit pixelUnit() const { return pixelUnit_; }

protected:
    [[nodiscard]] const QString &dataFolder() const { return dataFolder_; }
    void setPixelUnit(PixelUnit unit) { pixelUnit_ = unit; }

    /// For a back-end's own connections that are to be dropped together.
    ConnectionHelper connectionHelper_;

private:
    using Record = std::unique_ptr<EyeTrackingCSV>;

    const QString dataFolder_;
    PixelUnit pixelUnit_ = PixelUnit::Desktop;
    std::atomic<bool> connected_{false};
    Guarded<QRect> calibratedArea_;
    Guarded<SampleWindow> samples_{SampleWindow(sampleWindowMs)};
    Guarded<Record> recordFile_;
};
