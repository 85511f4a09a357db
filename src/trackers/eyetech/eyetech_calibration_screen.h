#pragma once

#include "toolkit/base/connection_helper.h"
#include "trackers/eyetech/eyetech_calibration_sequence.h"

#include <QWidget>

class EyetechGrabber;
class QLabel;
class VPushButton;
struct EyeTrackingSample;

/// The calibration screen of an EyeTech tracker: a window over the calibrated area. It shows the targets, and then the
/// scores of each eye at each target.
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
    /// Runs a calibration. If it fails or is cancelled, closes the window and returns false.
    bool startCalibration();

Q_SIGNALS:
    /// Emitted when all targets are measured and scored.
    void calibrated(int calibrationId);
    /// Emitted after a click on "Recalibrate".
    void calibrationWanted();

protected:
    void closeEvent(QCloseEvent *event) override;
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

    void drawMovingTarget(QPainter &painter) const;
    void drawScores(QPainter &painter, const eyetech::calibration_layout::Target &target) const;

    EyetechGrabber *grabber_;
    bool calibrationWanted_ = true;
    eyetech::CalibrationSequence sequence_;
    ConnectionHelper connections_;

    QWidget *leftEyeShade_ = nullptr;
    QWidget *rightEyeShade_ = nullptr;
    VPushButton *saveButton_ = nullptr;
    VPushButton *recalibrateButton_ = nullptr;
    QLabel *gazeMarker_ = nullptr;
};
