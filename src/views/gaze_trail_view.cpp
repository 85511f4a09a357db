#include "views/gaze_trail_view.h"

#include "core/eyetracker_interface.h"

#include <QEvent>
#include <QPainter>
#include <QScreen>

namespace {

constexpr int refreshIntervalMs = 33;
constexpr QSize preferredSize(320, 200);
constexpr QSize minSize(120, 75);

constexpr double frameWidth = 4;
constexpr double frameRadius = 6;
constexpr double trailWidth = 2.5;
constexpr double gazeRadius = 7;

QColor faded(QColor colour, double freshness) {
    colour.setAlphaF(freshness);
    return colour;
}

}  // namespace

GazeTrailView::GazeTrailView(QWidget *parent) : BaseEyetrackerWidget(parent) {
    timer_.setInterval(refreshIntervalMs);
    connect(&timer_, &QTimer::timeout, this, &GazeTrailView::refresh);
}

QSize GazeTrailView::sizeHint() const {
    return preferredSize;
}

QSize GazeTrailView::minimumSizeHint() const {
    return minSize;
}

void GazeTrailView::eyetrackerChanged() {
    trail_.clear();
    lastNumber_ = 0;
    update();
}

void GazeTrailView::showEvent(QShowEvent *event) {
    timer_.start();
    BaseEyetrackerWidget::showEvent(event);
}

void GazeTrailView::hideEvent(QHideEvent *event) {
    timer_.stop();
    BaseEyetrackerWidget::hideEvent(event);
}

void GazeTrailView::changeEvent(QEvent *event) {
    if (event->type() == QEvent::LanguageChange)
        update();
    BaseEyetrackerWidget::changeEvent(event);
}

void GazeTrailView::refresh() {
    const bool wasEmpty = trail_.isEmpty();
    readSamples();
    trail_.removeOld(GazeTrail::Clock::now());
    if (!wasEmpty || !trail_.isEmpty())
        update();
}

void GazeTrailView::readSamples() {
    if (!eyetracker_)
        return;
    for (const NumberedSample &entry : eyetracker_->samplesSince(lastNumber_).samples) {
        trail_.add(entry);
        lastNumber_ = entry.number;
    }
}

/// Returns the size of the tracked screen or, if it is not known, of the screen with this window.
QSize GazeTrailView::screenSize() const {
    const QSize tracked = eyetracker_ ? eyetracker_->pixelArea().size() : QSize();
    return tracked.isEmpty() ? screen()->size() : tracked;
}

void GazeTrailView::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF inside = QRectF(rect()).adjusted(frameWidth, frameWidth, -frameWidth, -frameWidth);
    const QRectF screen = gaze_trail::screenIn(inside, screenSize());
    drawScreen(painter, screen);
    if (trail_.isEmpty()) {
        painter.setPen(palette().color(QPalette::PlaceholderText));
        painter.drawText(screen, Qt::AlignCenter | Qt::TextWordWrap, tr("No gaze"));
        return;
    }
    drawTrail(painter, screen);
}

void GazeTrailView::drawScreen(QPainter &painter, const QRectF &screen) const {
    constexpr double half = frameWidth / 2;
    painter.setPen(QPen(palette().color(QPalette::Mid), frameWidth));
    painter.setBrush(palette().color(QPalette::Base));
    painter.drawRoundedRect(screen.adjusted(-half, -half, half, half), frameRadius, frameRadius);
}

void GazeTrailView::drawTrail(QPainter &painter, const QRectF &screen) const {
    const QColor colour = palette().color(QPalette::Highlight);
    const std::vector<GazeTrail::Point> points = trail_.points(GazeTrail::Clock::now());
    QPointF previous;
    for (const GazeTrail::Point &point : points) {
        const QPointF place = gaze_trail::placeOf(point.percent, screen);
        if (point.isJoined) {
            painter.setPen(QPen(faded(colour, point.freshness), trailWidth, Qt::SolidLine, Qt::RoundCap));
            painter.drawLine(previous, place);
        }
        previous = place;
    }
    painter.setPen(Qt::NoPen);
    painter.setBrush(faded(colour, points.back().freshness));
    painter.drawEllipse(previous, gazeRadius, gazeRadius);
}
