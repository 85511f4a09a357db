#pragma once

#include "core/guarded.h"
#include "trackers/asee/calib_worker.h"
#include "trackers/asee/gaze_reading.h"

#include <QWidget>
#include <atomic>
#include <memory>

class CalibrationGate;
class QThread;

/// The full-screen calibration of the aSee Pro back-end: nine points, a box to place the eyes in, and the live gaze.
///
/// Space starts a calibration, which the worker runs on a thread of its own; Escape, or closing the window, ends it
/// within a second and closes the screen, which may be shown again. After a calibration the thread stays until then.
///
/// Created, shown and deleted on the GUI thread by the back-end. takeGaze() and finishPoint() are for the vendor
/// library's threads, through LiveObjects; the worker changes the screen by queued calls.
class CalibrationWidget : public QWidget {
    Q_OBJECT

public:
    explicit CalibrationWidget(QWidget *parent = nullptr, CalibrationPace pace = {});
    ~CalibrationWidget() override;

    /// Where the worker writes the coefficients: a folder with a slash at its end. Before the screen is shown.
    void setDataFolder(const QString &folder) { dataFolder_ = folder; }
    [[nodiscard]] QString dataFolder() const { return dataFolder_; }

    /// Shows the screen full screen where `area` begins.
    void showOn(QRect area);
    /// Whether the live gaze point is drawn.
    void setShowGaze(bool on);

    [[nodiscard]] bool isRunBy(const CalibWorker *worker) const { return worker == worker_; }

    // What the worker has shown.
    void showCalibration();
    void showPoint(FractionPoint point, FractionPoint next);
    void showIntro();
    void setFinished();

    /// A gaze record from the back-end.
    void takeGaze(const GazeRecord &record);
    /// The device has measured the point.
    void finishPoint();

Q_SIGNALS:
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
    void requestRepaint();

    void paintIntro(QPainter &painter);
    void paintEyeBox(QPainter &painter) const;
    void paintText(QPainter &painter, const QString &text) const;
    void paintTarget(QPainter &painter, FractionPoint place) const;
    void paintGaze(QPainter &painter) const;

    QString dataFolder_;
    float radius_;
    bool introMode_ = true;
    bool eyeBoxMode_ = true;
    bool finished_ = false;
    std::atomic<bool> showGaze_{false};
    int gazeState_ = 0;
    FractionPoint gaze_{-1, -1};
    FractionPoint point_{0.5F, 0.5F};
    FractionPoint nextPoint_{0.5F, 0.5F};
    Guarded<gaze_reading::Eyes> eyes_;
    std::atomic<bool> repaintRequested_{false};

    const std::shared_ptr<CalibrationGate> gate_;
    // Deleted by hand, as the library may hold the worker up beyond the end of the screen.
    QThread *workerThread_;
    CalibWorker *worker_;
};
