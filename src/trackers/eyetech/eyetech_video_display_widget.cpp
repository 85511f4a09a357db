#include "trackers/eyetech/eyetech_video_display_widget.h"

#include "trackers/eyetech/camera_picture.h"
#include "trackers/eyetech/eyetech_grabber.h"

#include <QPainter>
#include <array>

namespace {

/// Neither widgets nor images smaller than this are worth drawing.
constexpr int leastPixels = 10;

constexpr QSize leastSize(256, 135);
constexpr QSize usualSize = leastSize * 2;

const QBrush &brushFor(camera_picture::Distance distance) {
    static const auto brushes = [] {
        std::array<QBrush, camera_picture::distanceCount> all;
        for (std::size_t i = 0; i < all.size(); ++i)
            all[i] = camera_picture::colourOf(static_cast<camera_picture::Distance>(i));
        return all;
    }();
    return brushes[static_cast<std::size_t>(distance)];
}

}  // namespace

EyetechVideoDisplayWidget::EyetechVideoDisplayWidget(EyetechGrabber *grabber, QWidget *parent)
    : QWidget(parent), grabber_(grabber) {
    setMinimumSize(leastSize);
    if (grabber_)
        connections_ << connect(grabber_, &EyetechGrabber::newFrame, this, &EyetechVideoDisplayWidget::showFrame,
                                Qt::QueuedConnection);
}

EyetechVideoDisplayWidget::~EyetechVideoDisplayWidget() {
    connections_.clear();
}

QSize EyetechVideoDisplayWidget::sizeHint() const {
    return usualSize;
}

void EyetechVideoDisplayWidget::showFrame(const QLFrameData &frame) {
    frame_ = frame;
    hasFrame_ = true;
    update();
}

void EyetechVideoDisplayWidget::paintEvent(QPaintEvent *) {
    if (!enabled_ || !grabber_ || !hasFrame_ || frame_.image.width() < leastPixels)
        return;
    if (width() < leastPixels || height() < leastPixels)
        return;
    const camera_picture::Fit fit = camera_picture::fit(size());
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
    const float factor = camera_picture::sizeFactor(distance_cm);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(brushFor(camera_picture::rate(distance_cm)));
    for (const QLFrameData::Eye &eye : {frame_.leftEye(), frame_.rightEye()}) {
        if (eye.found)
            painter.drawEllipse(camera_picture::marker({eye.pupilX, eye.pupilY}, scale, factor));
    }
}
