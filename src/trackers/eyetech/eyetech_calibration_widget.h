#pragma once

#include "toolkit/connection_helper.h"
#include "trackers/eyetech/calibration_picture.h"
#include "trackers/eyetech/eyetech_settings.h"

#include <QWidget>
#include <vector>

class EyetechGrabber;
class QLabel;
class VPushButton;
struct EyeTrackingSample;

/// The calibration screen of an EyeTech tracker: a window over the calibrated area that shows one target after another,
/// has the device look at the user's eyes meanwhile, and then shows how well each eye hit each target.
///
/// Owned by its tracker, which outlives it and runs startCalibration(). That handles events while it waits, so that
/// anything may happen within it: Escape, the tracker's stopCalibrationRequest(), close() and the end of the program
/// cancel it at once, and it returns soon after. Closed, the screen listens to nothing any more. It never deletes
/// itself. GUI thread.
class EyetechCalibrationWidget : public QWidget {
    Q_OBJECT

public:
    struct Timings {
        int animationMs;    ///< at most, for the way to a target
        int delayMs;        ///< at most, before the device looks
        int calibrationMs;  ///< how long the device looks
    };
    /// Of all calibrations; changes hold from the next target on.
    static Timings timings;

    /// Shows the window at once.
    EyetechCalibrationWidget(EyetechGrabber *grabber, QRect area, EyetechSettings::CalibrationType type,
                             QWidget *parent = nullptr);

    /// Whether the open window waits for startCalibration(): at first, and after a click on "Recalibrate".
    [[nodiscard]] bool isCalibrationWanted() const { return calibrationWanted_; }
    /// Runs the whole sequence. False when it failed or was cancelled; then the window is closed.
    bool startCalibration();

Q_SIGNALS:
    /// All targets are done and scored.
    void calibrated(int calibrationId);
    /// "Recalibrate" was clicked.
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

    [[nodiscard]] bool initialise();
    [[nodiscard]] bool fetchTargets(std::vector<QLTarget> &fetched) const;
    [[nodiscard]] bool runTargets(const std::vector<QLTarget> &fetched);
    [[nodiscard]] bool runTarget(const QLTarget &target);
    [[nodiscard]] bool tryTarget(const QLTarget &target);
    void record(const QLTarget &target);
    void moveTo(QPoint position);
    void awaitResult(const QLTarget &target) const;
    void score(const std::vector<QLTarget> &fetched);
    void showResult();
    bool fail();

    void showSample(const EyeTrackingSample &sample);
    void cancel();
    void save();
    void recalibrate();

    void drawMovingTarget(QPainter &painter) const;
    void drawScores(QPainter &painter, const calibration_picture::Target &target) const;

    EyetechGrabber *grabber_;
    EyetechSettings::CalibrationType calibrationType_;
    int calibrationId_ = 0;
    bool calibrationWanted_ = true;
    bool cancelled_ = false;
    bool busy_ = true;
    QPoint targetPosition_{0, 0};
    std::vector<calibration_picture::Target> targets_;
    ConnectionHelper connections_;

    QWidget *leftEyeShade_ = nullptr;
    QWidget *rightEyeShade_ = nullptr;
    VPushButton *saveButton_ = nullptr;
    VPushButton *recalibrateButton_ = nullptr;
    QLabel *gazeMarker_ = nullptr;
};
