#pragma once

#include "core/eyetracker_interface.h"
#include "toolkit/base/connection_helper.h"
#include "trackers/eyetech/eyetech_calibration_sequence.h"

#include <QTimer>
#include <QWidget>
#include <vector>

class EyetechGrabber;
class QLabel;
class VPushButton;
struct EyeTrackingSample;

/// The calibration screen of an EyeTech tracker: a window over the calibrated area. It shows the targets, and then the
/// scores of each eye at each target. If the calibration fails, it shows the reason until it is closed by Escape, by a
/// click, or after 10 s.
///
/// Owned by the tracker, which closes the screen in its destructor. The tracker calls startCalibration(), which
/// processes events while it waits. Escape, the tracker's stopCalibrationRequest(), close() and the end of the program
/// cancel the calibration, and the function returns soon afterwards. A closed screen ignores all signals and is not
/// deleted. GUI thread.
class EyetechCalibrationWidget : public QWidget {
    Q_OBJECT

public:
    /// Shows the window.
    EyetechCalibrationWidget(EyetechGrabber *grabber, QRect area, EyetechSettings::CalibrationType type,
                             QWidget *parent = nullptr);

    /// Returns whether the tracker must call startCalibration(): initially, and after a click on "Recalibrate". Returns
    /// false after the window was closed.
    [[nodiscard]] bool isCalibrationWanted() const { return calibrationWanted_; }
    /// Returns 0 before the first calibration. Later calibrations of this screen have the same id.
    [[nodiscard]] int calibrationId() const { return sequence_.calibrationId(); }
    /// Runs a calibration. If it is cancelled, closes the window.
    void startCalibration();
    /// Ends a calibration that has failed, and shows the reason.
    void fail(eyetech::CalibrationOutcome reason);

Q_SIGNALS:
    /// Emitted when all targets are measured and scored. The receiver may call fail().
    void calibrated(int calibrationId);
    /// Emitted once for each calibration: for the first one and for each click on "Recalibrate".
    void finished(EyetrackerInterface::CalibrationResult result);
    /// Emitted after a click on "Recalibrate".
    void calibrationWanted();

protected:
    void closeEvent(QCloseEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void buildWindow(QRect area);
    void buildShades();
    void buildButtons();
    void buildGazeMarker();
    void connectAll();

    void showSample(const EyeTrackingSample &sample);
    void cancel();
    void save();
    void recalibrate();
    void finish(EyetrackerInterface::CalibrationResult result);

    [[nodiscard]] bool hasFailed() const { return failure_ != eyetech::CalibrationOutcome::Done; }
    [[nodiscard]] QString failureText() const;
    void drawMovingTarget(QPainter &painter) const;
    void drawMessage(QPainter &painter, const QRect &box, const QString &text) const;
    void drawScores(QPainter &painter, const eyetech::calibration_layout::Target &target) const;
    void placeScoreTexts();
    void drawScoreTexts(QPainter &painter) const;

    EyetechGrabber *grabber_;
    bool calibrationWanted_ = true;
    bool isFinished_ = false;  ///< whether finished() was emitted for the current calibration
    eyetech::CalibrationOutcome failure_ = eyetech::CalibrationOutcome::Done;
    QTimer closeTimer_;  ///< closes the screen after a failure
    eyetech::CalibrationSequence sequence_;
    ConnectionHelper connections_;

    struct ScoreText {
        QPoint start;  ///< on the baseline
        QString text;
    };
    std::vector<ScoreText> scoreTexts_;

    QWidget *leftEyeShade_ = nullptr;
    QWidget *rightEyeShade_ = nullptr;
    VPushButton *saveButton_ = nullptr;
    VPushButton *recalibrateButton_ = nullptr;
    QLabel *gazeMarker_ = nullptr;
};
