#include "trackers/eyetech/eyetech_camera_view.h"

#include "trackers/eyetech/eyetech_camera_layout.h"
#include "trackers/eyetech/eyetech_tracker.h"

#include <QEvent>
#include <QPainter>
#include <array>

namespace layout = eyetech::camera_layout;

namespace {

/// Smaller widgets and images are not drawn.
constexpr int minPixels = 10;

constexpr int outlineWidth = 2;
constexpr QSize minSize(256, 135);
constexpr QSize defaultSize = minSize * 2;

const QBrush &brushFor(layout::Distance distance) {
    static const auto brushes = [] {
        std::array<QBrush, layout::distanceCount> all;
        for (std::size_t i = 0; i < all.size(); ++i)
            all[i] = layout::colourOf(static_cast<layout::Distance>(i));
        return all;
    }();
    return brushes[static_cast<std::size_t>(distance)];
}

}  // namespace

EyetechVideoDisplayWidget::EyetechVideoDisplayWidget(EyetechGrabber *grabber, QWidget *parent)
    : QWidget(parent), grabber_(grabber) {
    setMinimumSize(minSize);
    retranslate();
    if (grabber_)
        connections_ << connect(grabber_, &EyetechGrabber::newFrame, this, &EyetechVideoDisplayWidget::showFrame,
                                Qt::QueuedConnection);
}

EyetechVideoDisplayWidget::~EyetechVideoDisplayWidget() {
    connections_.clear();
}

void EyetechVideoDisplayWidget::retranslate() {
    setToolTip(
        tr("The colour of the markers rates your distance: green is good, red is too near or too far. Click to "
           "see the pupils under the markers."));
}

void EyetechVideoDisplayWidget::changeEvent(QEvent *event) {
    if (event->type() == QEvent::LanguageChange)
        retranslate();
    QWidget::changeEvent(event);
}

void EyetechVideoDisplayWidget::mousePressEvent(QMouseEvent *) {
    showsPupils_ = !showsPupils_;
    update();
}

QSize EyetechVideoDisplayWidget::sizeHint() const {
    return defaultSize;
}

void EyetechVideoDisplayWidget::showFrame(const QLFrameData &frame) {
    frame_ = frame;
    hasFrame_ = true;
    update();
}

void EyetechVideoDisplayWidget::paintEvent(QPaintEvent *) {
    if (!enabled_ || !grabber_ || !hasFrame_ || frame_.image.width() < minPixels)
        return;
    if (width() < minPixels || height() < minPixels)
        return;
    const layout::Fit fit = layout::fit(size());
    QPainter painter(this);
    painter.translate(fit.offset);
    drawImage(painter, fit.size);
    drawPupils(painter, fit.scale);
}

void EyetechVideoDisplayWidget::drawImage(QPainter &painter, QSize size) const {
    const QRect whole(QPoint(), size);
    if (plainBackground_)
        painter.fillRect(whole, QColor("#333"));
    else
        painter.drawImage(whole, frame_.image);
}

void EyetechVideoDisplayWidget::drawPupils(QPainter &painter, double scale) const {
    const float distance_cm = frame_.distance_cm();
    const float factor = layout::sizeFactor(distance_cm);
    painter.setRenderHint(QPainter::Antialiasing);
    const QBrush &brush = brushFor(layout::rate(distance_cm));
    painter.setPen(showsPupils_ ? QPen(brush, outlineWidth) : QPen(Qt::NoPen));
    painter.setBrush(showsPupils_ ? QBrush() : brush);
    for (const QLFrameData::Eye &eye : {frame_.leftEye(), frame_.rightEye()}) {
        if (eye.found)
            painter.drawEllipse(layout::marker({eye.pupilX, eye.pupilY}, scale, factor));
    }
}
