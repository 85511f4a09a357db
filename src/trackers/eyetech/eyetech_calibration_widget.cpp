#include "trackers/eyetech/eyetech_calibration_widget.h"

#include "core/eye_tracking_sample.h"
#include "toolkit/console.h"
#include "toolkit/global_keyboard.h"
#include "toolkit/ui_helper.h"
#include "toolkit/v_push_button.h"
#include "trackers/eyetech/eyetech_grabber.h"
#include "trackers/eyetech/quicklink2_binding.h"

#include <QCloseEvent>
#include <QEventLoop>
#include <QGridLayout>
#include <QLabel>
#include <QPainter>
#include <QRadialGradient>
#include <QTimer>
#include <algorithm>

namespace {

namespace picture = calibration_picture;

constexpr int markerRadius = 25;
constexpr int markerSize = 2 * markerRadius;
constexpr QSize iconSize(24, 24);

constexpr int mostTargets = 20;
constexpr int shortestDelayMs = 100;
constexpr int shortestCalibrationMs = 500;
constexpr int resultPollMs = 10;
/// Passes beyond these are not shown: a device that fails at every pass must not fill the memory.
constexpr std::size_t mostPasses = 1000;

// What the vendor's calls return, and the status of a target.
constexpr int initialise_failed = 1;
constexpr int initialise_unknown_calibration = 3;
constexpr int targets_buffer_too_small = 11;
constexpr int target_done = 0;
constexpr int target_running = 1;
constexpr int target_failed = -1;  // for a call that fails; any number but the two above
constexpr int left_eye = 0;
constexpr int right_eye = 1;

void print(const char *format, int value) {
    console::print(QString::asprintf(format, value).toStdString());
}

/// Handles what is pending, for so long at most. Returns at once when nothing is: that is intended, it makes the pace
/// of the animation.
void handleEvents(int atMostMs) {
    QEventLoop().processEvents(QEventLoop::AllEvents, atMostMs);
}

/// Handles events for so long, without keeping the processor busy. False when the program is about to end: no event
/// loop runs any more then.
bool waitWithEvents(int ms) {
    constexpr int timeUp = 1;
    QEventLoop loop;
    QTimer::singleShot(ms, &loop, [&loop] { loop.exit(timeUp); });
    return loop.exec() == timeUp;
}

int targetStatus(int calibration, int target) {
    int status = target_failed;
    return quicklink2::QLCalibration_GetStatus(calibration, target, &status) == 0 ? status : target_failed;
}

QLScore scoreOf(int calibration, int target, int eye) {
    QLScore score{};
    quicklink2::QLCalibration_GetScoring(calibration, target, eye, &score);
    return score;
}

QPixmap softDot() {
    const QPointF centre(markerRadius, markerRadius);
    QRadialGradient gradient(centre, markerRadius);
    gradient.setColorAt(0, Qt::white);
    gradient.setColorAt(1, Qt::transparent);
    QPixmap dot(markerSize, markerSize);
    dot.fill(Qt::transparent);
    QPainter(&dot).fillRect(dot.rect(), gradient);
    return dot;
}

QWidget *shade(QWidget *parent) {
    auto *widget = new QWidget(parent);
    QPalette palette;
    palette.setColor(QPalette::Window, QColor("#33CC3300"));
    widget->setPalette(palette);
    widget->setAutoFillBackground(true);
    widget->setAttribute(Qt::WA_TransparentForMouseEvents);
    widget->hide();
    return widget;
}

VPushButton *button(const QString &text, const QString &icon, const QString &colour, const QString &hoverColour,
                    QWidget *parent) {
    auto *widget = new VPushButton(text, parent);
    widget->setIcon(UIHelper::recolouredSvgIcon(icon, "#000", colour));
    widget->setIconSize(iconSize);
    widget->setFlat(true);
    widget->setStyleSheet(QString("QPushButton { color: %1; font-size: 25px; } QPushButton:hover { color: %2; }")
                              .arg(colour, hoverColour));
    widget->hide();
    return widget;
}

}  // namespace

EyetechCalibrationWidget::Timings EyetechCalibrationWidget::timings{1000, 1000, 2000};

EyetechCalibrationWidget::EyetechCalibrationWidget(EyetechGrabber *grabber, QRect area,
                                                   EyetechSettings::CalibrationType type, QWidget *parent)
    : QWidget(parent), grabber_(grabber), calibrationType_(type) {
    buildWindow(area);
    buildShades();
    buildButtons();
    buildGazeMarker();
    connectAll();
    show();
}

void EyetechCalibrationWidget::buildWindow(QRect area) {
    setWindowTitle(tr("Calibration"));
    setWindowFlags(Qt::FramelessWindowHint | Qt::ToolTip | Qt::WindowStaysOnTopHint);
    setAttribute(Qt::WA_NoSystemBackground);
    setAttribute(Qt::WA_TranslucentBackground);
    setGeometry(area);
}

void EyetechCalibrationWidget::buildShades() {
    leftEyeShade_ = shade(this);
    rightEyeShade_ = shade(this);
    auto *layout = new QGridLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(leftEyeShade_, 0, 0);
    layout->addWidget(rightEyeShade_, 0, 1);
    layout->setColumnStretch(0, 100);
    layout->setColumnStretch(1, 100);
}

void EyetechCalibrationWidget::buildButtons() {
    saveButton_ = button(tr("Save"), ":/icons/check-circle-outline.svg", "#3C0", "#6F3", this);
    recalibrateButton_ = button(tr("Recalibrate"), ":/icons/refresh.svg", "#C30", "#F63", this);
    const picture::Buttons places = picture::buttons(size());
    saveButton_->setGeometry(places.save);
    recalibrateButton_->setGeometry(places.recalibrate);
}

void EyetechCalibrationWidget::buildGazeMarker() {
    gazeMarker_ = new QLabel(this);
    gazeMarker_->setPixmap(softDot());
    gazeMarker_->resize(markerSize, markerSize);
    gazeMarker_->setAttribute(Qt::WA_TransparentForMouseEvents);
    gazeMarker_->hide();
}

void EyetechCalibrationWidget::connectAll() {
    GlobalKeyboard::Install();
    connections_ << connect(grabber_, &EyetechGrabber::newSample, this, &EyetechCalibrationWidget::showSample,
                            Qt::DirectConnection)
                 << connect(grabber_, &EyetechGrabber::stopCalibrationRequest, this, &EyetechCalibrationWidget::cancel,
                            Qt::DirectConnection)
                 << connect(GlobalKeyboard::Instance(), &GlobalKeyboard::keyPressed, this, [this](Qt::Key key) {
                        if (key == Qt::Key_Escape)
                            cancel();
                    });
    connect(saveButton_, &VPushButton::clicked, this, &EyetechCalibrationWidget::save);
    connect(recalibrateButton_, &VPushButton::clicked, this, &EyetechCalibrationWidget::recalibrate);
}

bool EyetechCalibrationWidget::startCalibration() {
    calibrationWanted_ = false;
    busy_ = true;
    cancelled_ = false;
    std::vector<QLTarget> fetched;
    if (!initialise() || !fetchTargets(fetched) || !runTargets(fetched))
        return fail();
    busy_ = false;
    score(fetched);
    showResult();
    return true;
}

bool EyetechCalibrationWidget::initialise() {
    const auto call = [this] {
        return quicklink2::QLCalibration_Initialize(grabber_->deviceId(), calibrationId_, calibrationType_);
    };
    int result = call();
    if (result == initialise_unknown_calibration) {
        quicklink2::QLCalibration_Create(0, &calibrationId_);
        result = call();
    }
    if (result == initialise_failed)
        print("QLCalibration_Initialize() failed with error code %d.\n", result);
    return result != initialise_failed;
}

bool EyetechCalibrationWidget::fetchTargets(std::vector<QLTarget> &fetched) const {
    int count = mostTargets;
    fetched.resize(mostTargets);
    const int result = quicklink2::QLCalibration_GetTargets(calibrationId_, &count, fetched.data());
    if (result == targets_buffer_too_small)
        print("The target buffer is too small. It should be at least %d bytes.\n",
              static_cast<int>(static_cast<unsigned>(count) * sizeof(QLTarget)));
    fetched.resize(static_cast<std::size_t>(std::clamp(count, 0, mostTargets)));
    return result == 0;
}

bool EyetechCalibrationWidget::runTargets(const std::vector<QLTarget> &fetched) {
    targets_.clear();
    return std::all_of(fetched.begin(), fetched.end(), [this](const QLTarget &target) { return runTarget(target); });
}

/// Until the device is content with it. One that fails at once is not tried again in the same breath.
bool EyetechCalibrationWidget::runTarget(const QLTarget &target) {
    bool done = tryTarget(target);
    while (!done && !cancelled_ && waitWithEvents(resultPollMs))
        done = tryTarget(target);
    return done;
}

bool EyetechCalibrationWidget::tryTarget(const QLTarget &target) {
    record(target);
    moveTo(picture::targetCentre(size(), target.x, target.y));
    handleEvents(std::max(timings.delayMs, shortestDelayMs));
    // Begun for a calibration that was cancelled meanwhile, too: that is intended.
    quicklink2::QLCalibration_Calibrate(calibrationId_, target.id,
                                        std::max(timings.calibrationMs, shortestCalibrationMs), false);
    awaitResult(target);
    return !cancelled_ && targetStatus(calibrationId_, target.id) == target_done;
}

void EyetechCalibrationWidget::record(const QLTarget &target) {
    if (targets_.size() < mostPasses)
        targets_.push_back({picture::targetCentre(size(), target.x, target.y), target.x, target.y});
}

void EyetechCalibrationWidget::moveTo(QPoint position) {
    const QPoint way = position - targetPosition_;
    // A device that fails at every pass must not have the same picture painted again and again.
    const int steps = way.isNull() ? 0 : picture::animationSteps(timings.animationMs);
    for (int i = 0; i < steps && !cancelled_; ++i) {
        targetPosition_ += QPoint(way.x() / steps, way.y() / steps);
        repaint();
        handleEvents(picture::animationStepMs);
    }
    targetPosition_ = position;
    repaint();
}

void EyetechCalibrationWidget::awaitResult(const QLTarget &target) const {
    while (!cancelled_ && targetStatus(calibrationId_, target.id) == target_running) {
        if (!waitWithEvents(resultPollMs))
            return;
    }
}

void EyetechCalibrationWidget::score(const std::vector<QLTarget> &fetched) {
    // By index, also where a target that failed has several records: that is intended.
    const std::size_t count = std::min(fetched.size(), targets_.size());
    for (std::size_t i = 0; i < count; ++i) {
        targets_[i].leftScore = scoreOf(calibrationId_, fetched[i].id, left_eye);
        targets_[i].rightScore = scoreOf(calibrationId_, fetched[i].id, right_eye);
    }
}

void EyetechCalibrationWidget::showResult() {
    saveButton_->show();
    recalibrateButton_->show();
    quicklink2::QLCalibration_Finalize(calibrationId_);
    Q_EMIT calibrated(calibrationId_);
    repaint();
}

bool EyetechCalibrationWidget::fail() {
    cancel();
    return false;
}

void EyetechCalibrationWidget::cancel() {
    cancelled_ = true;
    quicklink2::QLCalibration_Cancel(calibrationId_);
    close();
}

void EyetechCalibrationWidget::save() {
    quicklink2::QLCalibration_Finalize(calibrationId_);
    close();
}

void EyetechCalibrationWidget::recalibrate() {
    saveButton_->hide();
    recalibrateButton_->hide();
    calibrationWanted_ = true;
    Q_EMIT calibrationWanted();
}

void EyetechCalibrationWidget::closeEvent(QCloseEvent *event) {
    cancelled_ = true;
    calibrationWanted_ = false;
    connections_.clear();
    event->accept();
}

void EyetechCalibrationWidget::showSample(const EyeTrackingSample &sample) {
    leftEyeShade_->setVisible(!sample.l_valid);
    rightEyeShade_->setVisible(!sample.r_valid);
    const bool showsGaze = sample.valid && !busy_;
    gazeMarker_->setVisible(showsGaze);
    if (showsGaze)
        gazeMarker_->move(grabber_->percentToPixels(sample.x, sample.y, true) - QPoint(markerRadius, markerRadius));
}

void EyetechCalibrationWidget::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(rect(), QColor("#FF333333"));
    if (busy_) {
        drawMovingTarget(painter);
        return;
    }
    for (const picture::Target &target : targets_)
        drawScores(painter, target);
}

void EyetechCalibrationWidget::drawMovingTarget(QPainter &painter) const {
    painter.setBrush(QColor("#159"));
    painter.setPen(QPen(QColor("#FFF"), picture::outlineWidth));
    painter.drawEllipse(targetPosition_, picture::targetRadius, picture::targetRadius);
}

void EyetechCalibrationWidget::drawScores(QPainter &painter, const picture::Target &target) const {
    const auto circle = [&painter](QPoint centre, int radius) { painter.drawEllipse(centre, radius, radius); };
    painter.setBrush(picture::scoreColour(target));
    painter.setPen(QPen(QColor("#FFF"), picture::outlineWidth));
    circle(target.position, picture::targetRadius);

    const QPoint left = picture::gazePoint(size(), target, target.leftScore);
    const QPoint right = picture::gazePoint(size(), target, target.rightScore);
    painter.setPen(QColor(0x999999));
    painter.drawLine(target.position, left);
    painter.drawLine(target.position, right);
    circle(target.position, picture::centreRadius);
    circle(left, picture::gazeRadius);
    circle(right, picture::gazeRadius);
    painter.drawText(picture::textPosition(left), picture::scoreText("L:", target.leftScore));
    painter.drawText(picture::textPosition(right), picture::scoreText("R:", target.rightScore));
}
