#include "trackers/asee/calibration_widget.h"

#include "trackers/asee/asee_log.h"
#include "trackers/asee/calibration_gate.h"
#include "trackers/asee/calibration_layout.h"
#include "trackers/asee/live_objects.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QThread>

namespace layout = calibration_layout;

namespace {

/// The worker needs far less, unless the vendor's library holds it up.
constexpr unsigned long endTimeoutMs = 800;

constexpr int textPixels = 24;

/// Places that a device sends may be far outside, where there is nothing to draw.
void drawDisc(QPainter &painter, QPoint centre, float radius) {
    const auto r = static_cast<double>(radius);
    const QRectF bounds(centre.x() - r, centre.y() - r, 2 * r, 2 * r);
    if (bounds.intersects(painter.viewport()))
        painter.drawEllipse(bounds);
}

}  // namespace

CalibrationWidget::CalibrationWidget(QWidget *parent, CalibrationPace pace)
    : QWidget(parent),
      radius_(layout::fullRadius),
      gate_(std::make_shared<CalibrationGate>()),
      workerThread_(new QThread),
      worker_(new CalibWorker(gate_, pace)) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setCursor(Qt::BlankCursor);
    setWindowTitle(tr("Calibration"));
    worker_->moveToThread(workerThread_);
    connectSignals();
    LiveObjects<CalibrationWidget>::add(this);
}

CalibrationWidget::~CalibrationWidget() {
    LiveObjects<CalibrationWidget>::remove(this);
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

void CalibrationWidget::setShowGaze(bool on) {
    showGaze_ = on;
    update();
}

void CalibrationWidget::showCalibration() {
    introMode_ = false;
    eyeBoxMode_ = false;
    setShowGaze(false);
}

void CalibrationWidget::showPoint(FractionPoint point, FractionPoint next) {
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

void CalibrationWidget::takeGaze(const GazeRecord &record) {
    eyes_.with([&](gaze_reading::Eyes &eyes) { eyes = gaze_reading::eyesOf(record, eyes); });
    if (!showGaze_) {
        requestRepaint();
        return;
    }
    const FractionPoint gaze = gaze_reading::gazeOf(record);
    Q_EMIT signal_gaze(gaze.x, gaze.y, record.fixationState());
}

/// From any thread. One request at a time, however fast the device is.
void CalibrationWidget::requestRepaint() {
    if (repaintRequested_.exchange(true))
        return;
    const auto repaint = [this] {
        repaintRequested_ = false;
        update();
    };
    QMetaObject::invokeMethod(this, repaint, Qt::QueuedConnection);
}

void CalibrationWidget::finishPoint() {
    gate_->finishPoint();
}

void CalibrationWidget::on_calib_progress(int percent) {
    radius_ = layout::targetRadius(percent);
    update();
}

// The steps compound, as each starts from where the last one ended: that is intended.
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
    gate_->reset();
    finished_ = false;
    workerThread_->start();
    Q_EMIT signal_start_calibration(this);
}

void CalibrationWidget::endCalibration() {
    // Whoever has waited once in vain need not wait again.
    if (!workerThread_->isRunning() || gate_->isCancelled())
        return;
    gate_->cancel();
    workerThread_->quit();
    if (!workerThread_->wait(endTimeoutMs))
        qCWarning(lcAsee, "The vendor's library holds the calibration up; it goes on behind the closed screen");
    // A start that the thread did not get to must not wait for the next one.
    QCoreApplication::removePostedEvents(worker_, QEvent::MetaCall);
}

void CalibrationWidget::showEvent(QShowEvent *event) {
    // A minimised calibration goes on, and must be seen when the window manager brings it back.
    if (!event->spontaneous())
        introMode_ = eyeBoxMode_ = true;
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
        paintText(painter, tr("Нажмите ESC для выхода"));
    if (!introMode_ && !showGaze_)
        paintTarget(painter, point_);
    if (showGaze_)
        paintGaze(painter);
}

void CalibrationWidget::paintIntro(QPainter &painter) {
    radius_ = layout::fullRadius;
    for (const FractionPoint &place : layout::points)
        paintTarget(painter, place);
    if (eyeBoxMode_)
        paintEyeBox(painter);
}

void CalibrationWidget::paintEyeBox(QPainter &painter) const {
    painter.setBrush(QColor(layout::boxColour));
    painter.drawRect(layout::eyeBox(size()));
    paintText(painter, tr("Нажмите Пробел для начала калибровки"));
    painter.setBrush(QColor(layout::eyeColour));
    drawDisc(painter, layout::eyePixel(eyes_.copy(), size()), layout::eyeRadius);
}

void CalibrationWidget::paintText(QPainter &painter, const QString &text) const {
    QFont large = font();
    large.setPixelSize(textPixels);
    painter.setFont(large);
    painter.setPen(QColor(layout::textColour));
    painter.drawText(layout::textArea(size()), Qt::AlignCenter, text);
    painter.setPen(Qt::NoPen);
}

void CalibrationWidget::paintTarget(QPainter &painter, FractionPoint place) const {
    const QPoint centre = layout::pixelOf(place, size());
    painter.setBrush(QColor(layout::ringColour));
    drawDisc(painter, centre, radius_);
    painter.setBrush(QColor(layout::dotColour));
    drawDisc(painter, centre, layout::dotRadius);
}

/// In any other state the brush is the one of what was drawn before: that is intended.
void CalibrationWidget::paintGaze(QPainter &painter) const {
    if (gazeState_ == layout::greenState)
        painter.setBrush(QColor(layout::greenGazeColour));
    else if (gazeState_ == layout::redState)
        painter.setBrush(QColor(layout::redGazeColour));
    drawDisc(painter, layout::pixelOf(gaze_, size()), layout::gazeRadius(gazeState_));
}
