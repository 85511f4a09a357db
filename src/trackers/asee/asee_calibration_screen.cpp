#include "trackers/asee/asee_calibration_screen.h"

#include "trackers/asee/asee_calibration_gate.h"
#include "trackers/asee/asee_calibration_layout.h"
#include "trackers/asee/asee_live_objects.h"
#include "trackers/asee/asee_log.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QThread>
#include <utility>

using CalibrationResult = EyetrackerInterface::CalibrationResult;

namespace layout = asee::calibration_layout;

namespace {

constexpr int fontPixels = 24;
constexpr int hintFontPixels = 20;  // four lines fit between two rows of targets on a screen of 960 x 540 pixels

/// Draws nothing for a position outside the screen, which may be too large for QPainter.
void drawDisc(QPainter &painter, QPoint centre, float radius) {
    const auto r = static_cast<double>(radius);
    const QRectF bounds(centre.x() - r, centre.y() - r, 2 * r, 2 * r);
    if (bounds.intersects(painter.viewport()))
        painter.drawEllipse(bounds);
}

}  // namespace

CalibrationWidget::CalibrationWidget(QWidget *parent, asee::CalibrationPace pace)
    : QWidget(parent),
      endTimeoutMs_(static_cast<unsigned long>(pace.endTimeout.count())),
      radius_(layout::maxTargetRadius),
      gate_(std::make_shared<asee::CalibrationGate>()),
      workerThread_(new QThread),
      worker_(new CalibWorker(gate_, pace)) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setCursor(Qt::BlankCursor);
    setWindowTitle(tr("Calibration"));
    worker_->moveToThread(workerThread_);
    connectSignals();
    asee::LiveObjects<CalibrationWidget>::add(this);
}

CalibrationWidget::~CalibrationWidget() {
    asee::LiveObjects<CalibrationWidget>::remove(this);
    endCalibration();
    if (!workerThread_->isRunning()) {
        delete worker_;
        delete workerThread_;
        return;
    }
    connect(workerThread_, &QThread::finished, worker_, &QObject::deleteLater);
    connect(workerThread_, &QThread::finished, workerThread_, &QObject::deleteLater);
}

void CalibrationWidget::connectSignals() {
    connect(this, &CalibrationWidget::signal_gaze, this, &CalibrationWidget::on_show_gaze);
    connect(this, &CalibrationWidget::signal_calib_progress, this, &CalibrationWidget::on_calib_progress);
    connect(this, &CalibrationWidget::signal_calib_move_point, this, &CalibrationWidget::on_calib_move_point);
    connect(this, &CalibrationWidget::signal_start_calibration, worker_, &CalibWorker::process);
}

void CalibrationWidget::showOn(QRect area) {
    setGeometry(area);
    showFullScreen();
    raise();
    activateWindow();
}

void CalibrationWidget::bringToFront() {
    setWindowState(windowState() & ~Qt::WindowMinimized);
    raise();
    activateWindow();
}

void CalibrationWidget::setShowGaze(bool on) {
    showGaze_ = on;
    update();
}

void CalibrationWidget::showCalibration() {
    introMode_ = false;
    eyeBoxMode_ = false;
    setShowGaze(false);
}

void CalibrationWidget::showPoint(int number, asee::FractionPoint point, asee::FractionPoint next) {
    pointNumber_ = number;
    point_ = point;
    nextPoint_ = next;
    update();
}

void CalibrationWidget::showIntro() {
    introMode_ = true;
    update();
}

void CalibrationWidget::setFinished() {
    finished_ = true;
    update();
}

void CalibrationWidget::setOutcome(const asee::CalibrationOutcome &outcome) {
    // The screen was closed before the call of the library returned.
    if (!isCalibrating_)
        return;
    isCalibrating_ = false;
    outcome_ = outcome;
    update();
    reportEnd(outcome.isSuccess() ? CalibrationResult::Done : CalibrationResult::Failed);
}

void CalibrationWidget::reportEnd(CalibrationResult result) {
    if (!std::exchange(isEndReported_, true))
        Q_EMIT ended(result);
}

void CalibrationWidget::takeGaze(const asee::GazeRecord &record) {
    eyes_.with([&](asee::Eyes &eyes) { eyes = asee::eyesOf(record, eyes); });
    if (!showGaze_) {
        requestRepaint();
        return;
    }
    const asee::FractionPoint gaze = asee::gazeOf(record);
    Q_EMIT signal_gaze(gaze.x, gaze.y, record.fixationState());
}

/// Callable from any thread. At most one request is pending, so a fast device cannot fill the event queue.
void CalibrationWidget::requestRepaint() {
    if (repaintRequested_.exchange(true))
        return;
    const auto repaint = [this] {
        repaintRequested_ = false;
        update();
    };
    QMetaObject::invokeMethod(this, repaint, Qt::QueuedConnection);
}

void CalibrationWidget::on_calib_progress(int percent) {
    radius_ = layout::targetRadius(percent);
    update();
}

// Each step starts from the end of the previous one: that is intended.
void CalibrationWidget::on_calib_move_point(float value) {
    point_ = layout::moved(point_, nextPoint_, value);
    update();
}

void CalibrationWidget::on_show_gaze(float x, float y, int fixation) {
    gaze_ = {x, y};
    gazeState_ = fixation;
    update();
}

void CalibrationWidget::keyPressEvent(QKeyEvent *event) {
    if (event->key() == Qt::Key_Escape)
        close();
    else if (event->key() == Qt::Key_Space)
        startCalibration();
}

void CalibrationWidget::closeEvent(QCloseEvent *event) {
    endCalibration();
    QWidget::closeEvent(event);
}

void CalibrationWidget::startCalibration() {
    if (workerThread_->isRunning() || CalibWorker::isBusy())
        return;
    // Delivers queued changes of an earlier calibration, which continued because a call of the library blocked.
    QCoreApplication::sendPostedEvents(this, QEvent::MetaCall);
    gate_->reset();
    finished_ = false;
    isCalibrating_ = true;
    pointNumber_ = 0;
    workerThread_->start();
    Q_EMIT signal_start_calibration(this);
}

void CalibrationWidget::endCalibration() {
    stopWorker();
    isCalibrating_ = false;
    reportEnd(CalibrationResult::Cancelled);
}

void CalibrationWidget::stopWorker() {
    // If an earlier call timed out, do not wait again.
    if (!workerThread_->isRunning() || gate_->isCancelled())
        return;
    gate_->cancel();
    workerThread_->quit();
    if (!workerThread_->wait(endTimeoutMs_))
        qCWarning(lcAsee, "A call of the vendor's library blocks the calibration. It ends when the call returns");
    // Removes a start that is still queued, because the next calibration would also run it.
    QCoreApplication::removePostedEvents(worker_, QEvent::MetaCall);
    // Delivers the outcome if the calibration ended before it was cancelled.
    QCoreApplication::sendPostedEvents(this, QEvent::MetaCall);
}

void CalibrationWidget::showEvent(QShowEvent *event) {
    // A calibration continues while the window is minimised, and must be visible when the window is restored.
    if (!event->spontaneous()) {
        introMode_ = eyeBoxMode_ = true;
        outcome_.reset();
        isEndReported_ = false;
    }
    QWidget::showEvent(event);
}

void CalibrationWidget::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(rect(), QColor(layout::background));
    painter.setPen(Qt::NoPen);
    if (introMode_)
        paintIntro(painter);
    else if (finished_)
        paintText(painter, tr("Нажмите ESC для выхода"), layout::textArea(size()), fontPixels);
    if (!introMode_ && !showGaze_)
        paintTarget(painter, point_);
    paintHint(painter);
    if (showGaze_)
        paintGaze(painter);
}

void CalibrationWidget::paintIntro(QPainter &painter) {
    radius_ = layout::maxTargetRadius;
    for (const asee::FractionPoint &position : layout::points)
        paintTarget(painter, position);
    if (eyeBoxMode_)
        paintEyeBox(painter);
}

void CalibrationWidget::paintEyeBox(QPainter &painter) const {
    painter.setBrush(QColor(layout::boxColour));
    painter.drawRect(layout::eyeBox(size()));
    paintText(painter, tr("Нажмите Пробел для начала калибровки"), layout::textArea(size()), fontPixels);
    painter.setBrush(QColor(layout::eyeColour));
    drawDisc(painter, layout::eyePixel(eyes_.copy(), size()), layout::eyeRadius);
}

void CalibrationWidget::paintHint(QPainter &painter) const {
    paintText(painter, hint(), outcome_ ? layout::outcomeArea(size()) : layout::hintArea(size()), hintFontPixels);
}

QString CalibrationWidget::hint() const {
    if (outcome_)
        return outcome_->text() + '\n' + tr("Нажмите ESC для выхода");
    if (introMode_)
        return tr("Move until the orange circle (your eyes) is in the grey box");
    return pointNumber_ > 0 ? tr("Point %1 of %2").arg(pointNumber_).arg(layout::points.size()) : QString();
}

void CalibrationWidget::paintText(QPainter &painter, const QString &text, QRect area, int pixelSize) const {
    QFont large = font();
    large.setPixelSize(pixelSize);
    painter.setFont(large);
    painter.setPen(QColor(layout::textColour));
    painter.drawText(area, Qt::AlignCenter | Qt::TextWordWrap, text);
    painter.setPen(Qt::NoPen);
}

void CalibrationWidget::paintTarget(QPainter &painter, asee::FractionPoint position) const {
    const QPoint centre = layout::pixelOf(position, size());
    painter.setBrush(QColor(layout::ringColour));
    drawDisc(painter, centre, radius_);
    painter.setBrush(QColor(layout::dotColour));
    drawDisc(painter, centre, layout::dotRadius);
}

/// A state that is neither green nor red keeps the brush of the previous shape: that is intended.
void CalibrationWidget::paintGaze(QPainter &painter) const {
    if (gazeState_ == layout::greenState)
        painter.setBrush(QColor(layout::greenGazeColour));
    else if (gazeState_ == layout::redState)
        painter.setBrush(QColor(layout::redGazeColour));
    drawDisc(painter, layout::pixelOf(gaze_, size()), layout::gazeRadius(gazeState_));
}
