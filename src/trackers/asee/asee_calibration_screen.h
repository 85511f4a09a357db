#pragma once

#include "core/eyetracker_interface.h"
#include "core/guarded.h"
#include "trackers/asee/asee_calibration_sequence.h"
#include "trackers/asee/asee_record_reader.h"

#include <QWidget>
#include <atomic>
#include <memory>
#include <optional>

class QThread;

/// The full-screen calibration of the aSee Pro back-end: nine targets, a box for placing the eyes, and the live gaze.
/// Texts between the targets tell the user what to do, and how the calibration ended.
///
/// Space starts a calibration on the worker's thread. Escape, or closing the window, closes the screen and cancels the
/// calibration within one second. A closed screen can be shown again. Space has no effect after a calibration until the
/// screen is closed, because the thread runs until then.
///
/// Created, shown and deleted by the back-end on the GUI thread. takeGaze() is called on threads of the vendor's
/// library, through LiveObjects. The worker changes the screen with queued calls.
class CalibrationWidget : public QWidget {
    Q_OBJECT

public:
    explicit CalibrationWidget(QWidget *parent = nullptr, asee::CalibrationPace pace = {});
    ~CalibrationWidget() override;

    /// Sets the folder for the coefficients, with a slash at its end. Called before the screen is shown.
    void setDataFolder(const QString &folder) { dataFolder_ = folder; }
    [[nodiscard]] QString dataFolder() const { return dataFolder_; }

    /// Shows the window full screen on the screen that contains the top-left corner of `area`.
    void showOn(QRect area);
    /// Brings the visible window to the front. If it is minimised, restores it.
    void bringToFront();
    /// Returns the text between the targets: an instruction, the number of the current point, or the outcome.
    [[nodiscard]] QString hint() const;
    /// Sets whether the live gaze point is drawn.
    void setShowGaze(bool on);

    [[nodiscard]] bool isRunBy(const CalibWorker *worker) const { return worker == worker_; }

    // Called by the worker.
    void showCalibration();
    void showPoint(int number, asee::FractionPoint point, asee::FractionPoint next);
    void showIntro();
    void setFinished();
    void setOutcome(const asee::CalibrationOutcome &outcome);

    void takeGaze(const asee::GazeRecord &record);

Q_SIGNALS:
    /// The calibration has ended, or the screen was closed or destroyed before it ended. Emitted once each time that
    /// the screen was shown.
    void ended(EyetrackerInterface::CalibrationResult result);

    void signal_calib_progress(int percent);
    void signal_calib_move_point(float value);
    void signal_gaze(float x, float y, int fixation);
    void signal_start_calibration(CalibrationWidget *calibUI);

public Q_SLOTS:
    void on_calib_progress(int percent);
    void on_calib_move_point(float value);
    void on_show_gaze(float x, float y, int fixation);

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void connectSignals();
    void startCalibration();
    void endCalibration();
    void stopWorker();
    void reportEnd(EyetrackerInterface::CalibrationResult result);
    void requestRepaint();

    void paintIntro(QPainter &painter);
    void paintEyeBox(QPainter &painter) const;
    void paintHint(QPainter &painter) const;
    void paintText(QPainter &painter, const QString &text, QRect area, int pixelSize) const;
    void paintTarget(QPainter &painter, asee::FractionPoint position) const;
    void paintGaze(QPainter &painter) const;

    const unsigned long endTimeoutMs_;
    QString dataFolder_;
    float radius_;
    bool introMode_ = true;
    bool eyeBoxMode_ = true;
    bool finished_ = false;
    bool isCalibrating_ = false;  ///< the worker is calibrating
    bool isEndReported_ = true;
    int pointNumber_ = 0;  ///< from 1; 0 before the first point
    std::optional<asee::CalibrationOutcome> outcome_;
    std::atomic<bool> showGaze_{false};
    int gazeState_ = 0;
    asee::FractionPoint gaze_{-1, -1};
    asee::FractionPoint point_{0.5F, 0.5F};
    asee::FractionPoint nextPoint_{0.5F, 0.5F};
    Guarded<asee::Eyes> eyes_;
    std::atomic<bool> repaintRequested_{false};

    const std::shared_ptr<asee::CalibrationGate> gate_;
    // Not owned by a parent: if a call of the library blocks, both outlive the screen.
    QThread *workerThread_;
    CalibWorker *worker_;
};
