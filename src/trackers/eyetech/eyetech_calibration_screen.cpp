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
#include <QPainterPath>
#include <QRadialGradient>
#include <utility>

namespace {

namespace layout = eyetech::calibration_layout;

using eyetech::CalibrationOutcome;
using CalibrationResult = EyetrackerInterface::CalibrationResult;

constexpr int markerRadius = 25;
constexpr int markerSize = 2 * markerRadius;
constexpr QSize iconSize(24, 24);
constexpr int textOutline = 4;
constexpr int textMargin = textOutline / 2;
constexpr int failureMs = 10000;

const QColor background("#333");

QFont fontOfSize(QFont font, int pixels) {
    font.setPixelSize(pixels);
    font.setBold(true);
    return font;
}

/// Draws white text with an outline in the background colour, which is readable over circles and lines.
void drawOutlined(QPainter &painter, QPoint baseline, const QString &text) {
    QPainterPath path;
    path.addText(baseline, painter.font(), text);
    painter.strokePath(path, QPen(background, textOutline, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.fillPath(path, Qt::white);
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
    closeTimer_.setSingleShot(true);
    closeTimer_.setInterval(failureMs);
    connect(&closeTimer_, &QTimer::timeout, this, &QWidget::close);
    connect(saveButton_, &VPushButton::clicked, this, &EyetechCalibrationWidget::save);
    connect(recalibrateButton_, &VPushButton::clicked, this, &EyetechCalibrationWidget::recalibrate);
}

void EyetechCalibrationWidget::startCalibration() {
    calibrationWanted_ = false;
    switch (const CalibrationOutcome outcome = sequence_.run(grabber_->deviceId(), size())) {
        case CalibrationOutcome::Done:
            placeScoreTexts();
            saveButton_->show();
            recalibrateButton_->show();
            sequence_.finalize();
            Q_EMIT calibrated(sequence_.calibrationId());
            finish(CalibrationResult::Done);
            repaint();
            break;
        case CalibrationOutcome::Cancelled:
            close();
            break;
        default:
            fail(outcome);
    }
}

void EyetechCalibrationWidget::finish(CalibrationResult result) {
    if (std::exchange(isFinished_, true))
        return;
    Q_EMIT finished(result);
}

void EyetechCalibrationWidget::fail(CalibrationOutcome reason) {
    failure_ = reason;
    for (QWidget *widget :
         QList<QWidget *>{saveButton_, recalibrateButton_, leftEyeShade_, rightEyeShade_, gazeMarker_})
        widget->hide();
    closeTimer_.start();
    update();
    finish(CalibrationResult::Failed);
}

void EyetechCalibrationWidget::cancel() {
    if (!hasFailed())
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
    isFinished_ = false;
    Q_EMIT calibrationWanted();
}

void EyetechCalibrationWidget::closeEvent(QCloseEvent *event) {
    sequence_.stop();
    calibrationWanted_ = false;
    connections_.clear();
    closeTimer_.stop();
    event->accept();
    finish(CalibrationResult::Cancelled);
}

void EyetechCalibrationWidget::mousePressEvent(QMouseEvent *) {
    if (hasFailed())
        close();
}

void EyetechCalibrationWidget::showSample(const EyeTrackingSample &sample) {
    if (hasFailed())
        return;
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
    painter.fillRect(rect(), background);
    if (hasFailed()) {
        drawMessage(painter, rect(), failureText() + "\n\n" + tr("Press Escape or click to close this screen."));
        return;
    }
    if (sequence_.isBusy()) {
        drawMovingTarget(painter);
        return;
    }
    for (const layout::Target &target : sequence_.targets())
        drawScores(painter, target);
    drawScoreTexts(painter);
}

QString EyetechCalibrationWidget::failureText() const {
    switch (failure_) {
        case CalibrationOutcome::NotStarted:
            return tr("The calibration has failed: the tracker refused to start it.");
        case CalibrationOutcome::NoTargets:
            return tr("The calibration has failed: the tracker did not return its targets.");
        case CalibrationOutcome::DeviceLost:
            return tr("The calibration has failed: the tracker was lost. Check its cable and calibrate again.");
        case CalibrationOutcome::NotApplied:
            return tr("The calibration has failed: the tracker refused its result.");
        case CalibrationOutcome::Done:
        case CalibrationOutcome::Cancelled:
            break;
    }
    return {};
}

void EyetechCalibrationWidget::drawMessage(QPainter &painter, const QRect &box, const QString &text) const {
    painter.setFont(fontOfSize(font(), layout::messagePixels));
    painter.setPen(Qt::white);
    const int margin = box.width() / 10;
    painter.drawText(box.adjusted(margin, 0, -margin, 0), Qt::AlignCenter | Qt::TextWordWrap, text);
}

void EyetechCalibrationWidget::drawMovingTarget(QPainter &painter) const {
    painter.setBrush(QColor("#159"));
    painter.setPen(QPen(QColor("#FFF"), layout::outlineWidth));
    painter.drawEllipse(sequence_.targetPosition(), layout::targetRadius, layout::targetRadius);
    if (sequence_.isTargetRefused())
        drawMessage(painter, layout::messageBox(size(), sequence_.targetPosition()),
                    tr("The tracker does not accept this target and tries again. Look at its centre, or press Escape "
                       "to cancel."));
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
}

/// Called once for a calibration, because a target may have many measurements.
void EyetechCalibrationWidget::placeScoreTexts() {
    const QFontMetrics metrics(fontOfSize(font(), layout::textPixels));
    QStringList texts;
    std::vector<QRect> boxes;
    std::vector<QRect> targetBoxes;
    const auto add = [&](const QString &text, int left, int top) {
        texts << text;
        boxes.emplace_back(left, top, metrics.horizontalAdvance(text), metrics.height());
    };
    for (const QString &text : {tr("L: left eye, R: right eye"), tr("A smaller score is better, below 10 is good")})
        add(text, (width() - metrics.horizontalAdvance(text)) / 2, textMargin);
    for (const layout::Target &target : sequence_.targets()) {
        targetBoxes.push_back(layout::targetBox(target.position));
        for (const auto &[eye, score] : {std::pair("L:", target.leftScore), std::pair("R:", target.rightScore)}) {
            const QPoint start = layout::textPosition(layout::gazePoint(size(), target, score));
            add(layout::scoreText(eye, score), start.x(), start.y() - metrics.ascent());
        }
    }
    boxes = layout::separated(size(), std::move(boxes), targetBoxes);
    scoreTexts_.clear();
    for (int i = 0; i < texts.size(); ++i)
        scoreTexts_.push_back({boxes[static_cast<std::size_t>(i)].topLeft() + QPoint(0, metrics.ascent()), texts[i]});
}

void EyetechCalibrationWidget::drawScoreTexts(QPainter &painter) const {
    painter.setFont(fontOfSize(font(), layout::textPixels));
    for (const ScoreText &text : scoreTexts_)
        drawOutlined(painter, text.start, text.text);
}
