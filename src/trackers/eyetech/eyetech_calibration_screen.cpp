#include "trackers/eyetech/eyetech_calibration_screen.h"

#include "core/eye_tracking_sample.h"
#include "toolkit/platform/global_keyboard.h"
#include "toolkit/widgets/ui_helper.h"
#include "toolkit/widgets/v_push_button.h"
#include "trackers/eyetech/eyetech_tracker.h"

#include <QCloseEvent>
#include <QGridLayout>
#include <QLabel>
#include <QPainter>
#include <QRadialGradient>

namespace {

namespace layout = eyetech::calibration_layout;

constexpr int markerRadius = 25;
constexpr int markerSize = 2 * markerRadius;
constexpr QSize iconSize(24, 24);

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
    widget->setIcon(UIHelper::tintedSvgIcon(icon, colour));
    widget->setIconSize(iconSize);
    widget->setFlat(true);
    widget->setStyleSheet(QString("QPushButton { color: %1; font-size: 25px; } QPushButton:hover { color: %2; }")
                              .arg(colour, hoverColour));
    widget->hide();
    return widget;
}

}  // namespace

EyetechCalibrationWidget::EyetechCalibrationWidget(EyetechGrabber *grabber, QRect area,
                                                   EyetechSettings::CalibrationType type, QWidget *parent)
    : QWidget(parent), grabber_(grabber), sequence_(type) {
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
    auto *grid = new QGridLayout(this);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setSpacing(0);
    grid->addWidget(leftEyeShade_, 0, 0);
    grid->addWidget(rightEyeShade_, 0, 1);
    grid->setColumnStretch(0, 100);
    grid->setColumnStretch(1, 100);
}

void EyetechCalibrationWidget::buildButtons() {
    saveButton_ = button(tr("Save"), ":/icons/check-circle-outline.svg", "#3C0", "#6F3", this);
    recalibrateButton_ = button(tr("Recalibrate"), ":/icons/refresh.svg", "#C30", "#F63", this);
    const layout::Buttons places = layout::buttons(size());
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
    connect(&sequence_, &eyetech::CalibrationSequence::targetMoved, this, qOverload<>(&QWidget::repaint));
    connect(saveButton_, &VPushButton::clicked, this, &EyetechCalibrationWidget::save);
    connect(recalibrateButton_, &VPushButton::clicked, this, &EyetechCalibrationWidget::recalibrate);
}

bool EyetechCalibrationWidget::startCalibration() {
    calibrationWanted_ = false;
    if (!sequence_.run(grabber_->deviceId(), size())) {
        close();
        return false;
    }
    saveButton_->show();
    recalibrateButton_->show();
    sequence_.finalize();
    Q_EMIT calibrated(sequence_.calibrationId());
    repaint();
    return true;
}

void EyetechCalibrationWidget::cancel() {
    sequence_.cancel();
    close();
}

void EyetechCalibrationWidget::save() {
    sequence_.finalize();
    close();
}

void EyetechCalibrationWidget::recalibrate() {
    saveButton_->hide();
    recalibrateButton_->hide();
    calibrationWanted_ = true;
    Q_EMIT calibrationWanted();
}

void EyetechCalibrationWidget::closeEvent(QCloseEvent *event) {
    sequence_.stop();
    calibrationWanted_ = false;
    connections_.clear();
    event->accept();
}

void EyetechCalibrationWidget::showSample(const EyeTrackingSample &sample) {
    leftEyeShade_->setVisible(!sample.l_valid);
    rightEyeShade_->setVisible(!sample.r_valid);
    const bool showsGaze = sample.valid && !sequence_.isBusy();
    gazeMarker_->setVisible(showsGaze);
    if (showsGaze)
        gazeMarker_->move(grabber_->percentToPixels(sample.x, sample.y, true) - QPoint(markerRadius, markerRadius));
}

void EyetechCalibrationWidget::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(rect(), QColor("#FF333333"));
    if (sequence_.isBusy()) {
        drawMovingTarget(painter);
        return;
    }
    for (const layout::Target &target : sequence_.targets())
        drawScores(painter, target);
}

void EyetechCalibrationWidget::drawMovingTarget(QPainter &painter) const {
    painter.setBrush(QColor("#159"));
    painter.setPen(QPen(QColor("#FFF"), layout::outlineWidth));
    painter.drawEllipse(sequence_.targetPosition(), layout::targetRadius, layout::targetRadius);
}

void EyetechCalibrationWidget::drawScores(QPainter &painter, const layout::Target &target) const {
    const auto circle = [&painter](QPoint centre, int radius) { painter.drawEllipse(centre, radius, radius); };
    painter.setBrush(layout::scoreColour(target));
    painter.setPen(QPen(QColor("#FFF"), layout::outlineWidth));
    circle(target.position, layout::targetRadius);

    const QPoint left = layout::gazePoint(size(), target, target.leftScore);
    const QPoint right = layout::gazePoint(size(), target, target.rightScore);
    painter.setPen(QColor(0x999999));
    painter.drawLine(target.position, left);
    painter.drawLine(target.position, right);
    circle(target.position, layout::centreRadius);
    circle(left, layout::gazeRadius);
    circle(right, layout::gazeRadius);
    painter.drawText(layout::textPosition(left), layout::scoreText("L:", target.leftScore));
    painter.drawText(layout::textPosition(right), layout::scoreText("R:", target.rightScore));
}
