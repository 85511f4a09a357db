#pragma once

#include "core/eye_tracking_sample.h"
#include "core/guarded.h"
#include "core/record_length.h"
#include "core/sample_window.h"
#include "toolkit/base/connection_helper.h"
#include "toolkit/platform/vendor_library.h"

#include <QObject>
#include <QPoint>
#include <QRect>
#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

class EyeTrackingCSV;
struct Marker;
struct RecordSlice;
class RecordingPhases;
class SampleSignal;
class VTSettings;
class QWidget;

/// A recording that has not been stopped.
struct RunningRecording {
    QString path;                                     ///< where the record file will be written
    std::chrono::system_clock::time_point startedAt;  ///< not changed if the system clock is set later
    RecordLength length;
    int markerCount = 0;
};

/// The base class of all trackers. The rest of the program uses only this interface of a device family.
///
/// A back-end implements the seven pure virtual functions. It delivers samples only with addSample(), reports its
/// connection state only with setConnected(), and emits calibrationFinished() after each calibration. The base class
/// stores the samples of the last two seconds, the running recording, the calibrated area and the connection state.
///
/// MainWindow owns the trackers, from startup to exit. They live on the GUI thread. addSample(), the functions that
/// read samples, isConnected(), calibratedArea() and pixelArea() may be called from any thread. Call all other
/// functions on the GUI thread; other threads use QMetaObject::invokeMethod(). A back-end must stop the threads that
/// call addSample() before it is destroyed.
class EyetrackerInterface : public QObject {
    Q_OBJECT

public:
    /// The unit of the pixel fields in this tracker's samples. The units differ only with display scaling.
    enum class PixelUnit {
        Desktop,  ///< desktop pixels, like QScreen::geometry() and the calibrated area
        Device,   ///< physical pixels of the screen
    };

    /// How a calibration ended.
    enum class CalibrationResult {
        Done,       ///< the device uses the new calibration
        Failed,     ///< the device, or a step of the calibration, reported an error
        Cancelled,  ///< by the user, by stopCalibration() or by the end of the program
        Unknown,    ///< the device does not report the result
    };
    Q_ENUM(CalibrationResult)

    /// A connected tracker that has sent no sample for this time is silent. Its last sample is not live.
    static constexpr std::chrono::seconds silenceLimit{1};

    /// Maximum age of a sample in the window, relative to the newest sample.
    static constexpr qint32 sampleWindowMs = 2000;

    /// `dataFolder` is the folder for the settings and calibration files of the back-end.
    EyetrackerInterface(const QString &dataFolder, QObject *parent);
    ~EyetrackerInterface() override;

    /// Returns the short device name. It is shown to the user, and stored in the settings as the selected tracker.
    [[nodiscard]] virtual QString name() const = 0;
    /// Returns the settings of the back-end, which owns them, or null if it has none.
    [[nodiscard]] virtual VTSettings *settings() = 0;
    /// Returns a new camera view, which the caller owns, or null if the device has no camera image.
    [[nodiscard]] virtual QWidget *createViewWidget() = 0;
    /// Returns why the tracker is not connected, as a translated part of a sentence without a full stop, or an empty
    /// text if the reason is not known. Called only while isConnected() is false.
    [[nodiscard]] virtual QString connectionProblem() const { return {}; }
    /// Returns whether the samples have the two axes of the right eye exchanged: `r_x` is then its vertical position.
    /// Always returns the same value. Any thread.
    [[nodiscard]] virtual bool exchangesRightEye() const { return false; }
    /// Returns the manufacturer of the device, or an empty text if the name is not known. Always returns the same
    /// value. Any thread.
    [[nodiscard]] virtual QString manufacturer() const { return {}; }
    /// Returns the model of the device, or an empty text if the family has several models. Always returns the same
    /// value. Any thread.
    [[nodiscard]] virtual QString model() const { return {}; }
    /// Opens the device again, also if it was stopped, was lost or could not be opened before. A running recording
    /// continues. The new state is reported by connectedChanged(), by connectionFailed() or by the next sample. The
    /// default implementation calls stop() and start(). GUI thread.
    virtual void reconnect();

Q_SIGNALS:
    /// The combined gaze in percent. Not every back-end emits it.
    void newData(bool valid, double x, double y);
    /// A sample was delivered. Emitted on the thread that calls addSample(), before the sample is stored.
    void newSample(EyeTrackingSample sample);
    /// A calibration was successful. Not every device reports that.
    void calibrated();
    /// A calibration runs from now on, until calibrationFinished(). May be emitted again while it runs. GUI thread.
    void calibrationStarted();
    /// A calibration that calibrate() started has ended. Emitted once for each calibration, and with `Failed` also if
    /// reconnect() cannot restore an earlier one. GUI thread.
    void calibrationFinished(EyetrackerInterface::CalibrationResult result);
    void recordStarted();
    /// A recording was stopped. `path` is the file that was written, which may differ from the path that was passed to
    /// startRecord(). It is empty if the recording was discarded, or if no file could be written; see unsavedProblem().
    void recordStopped(QString path);
    /// saveUnsaved() or saveUnsavedAs() has written a recording to the file `path`.
    void unsavedRecordSaved(QString path);
    /// Asks the calibration screen to close.
    void stopCalibrationRequest();
    /// The connection changed. Emitted on the GUI thread.
    void connected();
    void disconnected();
    void connectedChanged(bool connected);
    /// An attempt to connect has failed. connectionProblem() returns the reason. Emitted on the GUI thread, and not by
    /// every back-end.
    void connectionFailed();

public Q_SLOTS:
    /// Opens the device and starts to deliver samples. Returns false if opening is known to have failed.
    virtual bool start() = 0;
    virtual void stop() = 0;
    /// Calibrates the device in `area`, in global desktop pixels.
    virtual void calibrate(QRect area) = 0;
    virtual void stopCalibration() = 0;
    /// Calibrates on a whole screen. The first screen has index 0. Does nothing if there is no such screen.
    void calibrateScreen(int screenIndex);
    void setCalibratedArea(int x, int y, int w, int h);
    void setCalibratedArea(QRect area);
    /// Starts a recording. A running recording is stopped; the new one gets all samples that arrive after the call. If
    /// `path` is empty, the record file is <date and time>_ocela.csv in the folder of setRecordsFolder(). Does not
    /// create the folder. Always returns true, because errors are detected only when stopRecord() writes the file.
    bool startRecord(QString path = QString());
    /// Stops the recording and writes the record file on the calling thread, if necessary to another place; see
    /// EyeTrackingCSV::saveFile(). Returns false if no recording is running.
    bool stopRecord();
    /// Returns the samples of the last two seconds, oldest first. Calls between two samples share one list. Creating it
    /// takes 0.1 ms for 2000 samples.
    QList<EyeTrackingSample> getSamples();
    /// Returns the newest sample. Before the first sample, all fields are 0.
    EyeTrackingSample getLastSample();
    bool isConnected() const { return connected_; }

public:
    /// Delivers a sample: emits newSample(), then numbers the sample and appends it to the window and to the running
    /// recording.
    ///
    /// The window is limited only by the age of the samples. The age is the difference of the timestamps or, if the
    /// device gives all samples the same timestamp, of the arrivals.
    ///
    /// If memory runs out while a recording is running, the recording keeps its rows, gets no further ones and can be
    /// saved. A warning is logged once. Without a recording, throws std::bad_alloc.
    void addSample(const EyeTrackingSample &sample);

    /// Sets a signal that addSample() sets after it has stored a sample. Call it before the first sample.
    void setSampleSignal(std::shared_ptr<SampleSignal> signal) { sampleSignal_ = std::move(signal); }

    /// Returns the samples in the window with a number above `number`, up to `last`, oldest first. 0 returns the whole
    /// window. To receive every sample once, pass the number of the last received sample, and check `missedCount`: it
    /// counts the samples after `number`, up to `last`, that have left the window.
    ///
    /// If `number` is the newest number or higher, returns no samples and a `missedCount` of 0. `number` may be from
    /// another tracker. The result then has the samples of this tracker that were delivered after it.
    [[nodiscard]] SamplesSince samplesSince(quint64 number, quint64 last = SampleWindow::maxNumber) const;

    /// Returns how many samples this tracker has delivered with a number above `number`, up to `last`, including those
    /// that have left the window. Returns nothing if that is not known any more.
    [[nodiscard]] std::optional<quint64> countBetween(quint64 number, quint64 last) const;

    /// Returns the newest sample with its number and arrival. Before the first sample, the number is 0.
    [[nodiscard]] NumberedSample lastNumberedSample() const;

    /// Whether a recording is running.
    [[nodiscard]] bool isRecording() const;

    /// Returns the running recording, or nothing. Any thread.
    [[nodiscard]] std::optional<RunningRecording> runningRecording() const;
    /// Stores a marker in the running recording. Returns false if there is none, if the recording has too many markers,
    /// or if memory has run out. Called by Markers. Any thread.
    bool addMarker(const Marker &marker);

    /// Returns the current length of the running recording. Without one, all fields are 0.
    [[nodiscard]] RecordLength recordLength() const;
    /// Returns the length of the recording of the last recordStopped() or unsavedRecordSaved().
    [[nodiscard]] const RecordLength &finishedRecordLength() const { return finishedLength_; }

    /// Returns why the last stopped recording could not be saved anywhere, or an empty text if all were saved. Unsaved
    /// recordings stay in memory until saveUnsaved(), saveUnsavedAs() or discardUnsaved().
    [[nodiscard]] QString unsavedProblem() const;

    /// Tries again to save the unsaved recordings, in `folder` unless it is empty. Returns whether all are saved.
    [[nodiscard]] bool saveUnsaved(const QString &folder = QString());

    /// Tries to save the unsaved recording whose path is `unsavedPath` to the file `path`. Returns whether it is saved.
    /// Returns true if there is no such recording.
    [[nodiscard]] bool saveUnsavedAs(const QString &unsavedPath, const QString &path);
    /// Returns the path of the last unsaved recording. Call it only if unsavedProblem() is not empty.
    [[nodiscard]] QString unsavedPath() const;

    void discardUnsaved();

    /// Stops the running recording without writing a file.
    void discardRecord();

    /// Sets the folder for recordings without a path. If it is empty, the folder is <documents>/Ocela. A record file
    /// that cannot be written to its own folder is written to `folder` or to <documents>/Ocela.
    void setRecordsFolder(const QString &folder) { recordsFolder_ = folder; }

    using CreatePhases = std::function<std::unique_ptr<RecordingPhases>(const EyeTrackingCSV &recording)>;
    /// Sets a function that is called at the start of each later recording, before it gets a sample.
    void setCreatePhases(CreatePhases create) { createPhases_ = std::move(create); }

    /// Returns the folder for recordings without a path.
    [[nodiscard]] QString recordsFolder() const;

    /// Returns a copy of rows and markers, see EyeTrackingCSV::slice(). `recording` is a running or stopped recording
    /// that was passed to the function of setCreatePhases(). Any thread.
    [[nodiscard]] RecordSlice sliceOf(const EyeTrackingCSV &recording, std::size_t firstRow, std::size_t firstMarker,
                                      std::size_t maxCount) const;

    /// Stores the connection state, and emits the connection signals if it changed.
    void setConnected(bool value);

    /// Converts a point from percent of the calibrated area to pixels from the area's top-left corner. With `clamp`, a
    /// point outside of the area is moved to its edge.
    [[nodiscard]] QPoint percentToPixels(float x, float y, bool clamp) const;

    [[nodiscard]] QRect calibratedArea() const { return calibratedArea_.copy(); }
    [[nodiscard]] PixelUnit pixelUnit() const { return pixelUnit_; }
    /// Returns the area to which percent and pixels of the samples are relative, in the unit of pixelUnit(). It is the
    /// calibrated area, unless the device itself reports the tracked screen. Empty if it is not known. Any thread.
    [[nodiscard]] virtual QRect pixelArea() const { return calibratedArea(); }

protected:
    [[nodiscard]] const QString &dataFolder() const { return dataFolder_; }
    void setPixelUnit(PixelUnit unit) { pixelUnit_ = unit; }

    /// Returns the connectionProblem() of a tracker whose vendor library cannot be used.
    [[nodiscard]] static QString libraryProblem(const VendorLibrary::Error &error);

    /// Signal connections of the back-end that are disconnected together.
    ConnectionHelper connectionHelper_;

private:
    using Recording = std::unique_ptr<EyeTrackingCSV>;

    bool finish(Recording recording);
    [[nodiscard]] bool save(EyeTrackingCSV &recording) const;
    void reportSaved(const EyeTrackingCSV &recording);
    void store(const EyeTrackingSample &sample, std::chrono::steady_clock::time_point arrival);

    const QString dataFolder_;
    PixelUnit pixelUnit_ = PixelUnit::Desktop;
    std::atomic<bool> connected_{false};
    Guarded<QRect> calibratedArea_;
    Guarded<SampleWindow> samples_{SampleWindow(sampleWindowMs)};
    std::shared_ptr<SampleSignal> sampleSignal_;
    Guarded<Recording> recording_;
    std::vector<Recording> unsaved_;  ///< stopped, but in no file; GUI thread
    RecordLength finishedLength_;
    QString recordsFolder_;
    CreatePhases createPhases_;
};
