#include "trackers/asee/asee_camera_view.h"

#include "trackers/asee/asee_tracker.h"

#include <QCoreApplication>
#include <QLabel>
#include <QPixmap>

namespace {

constexpr QSize defaultSize(400, 320);

QImage blackImage() {
    QImage image(100, 80, QImage::Format_Indexed8);
    image.setColorTable({qRgb(0, 0, 0)});
    image.fill(Qt::black);
    return image;
}

}  // namespace

aSeeProPreviewWidget::aSeeProPreviewWidget(aSeePro *tracker, QWidget *parent) : QWidget(parent), eyetracker_(tracker) {
    if (!tracker)
        return;
    imageLabel_ = new QLabel(this);
    // refresh() moves the label to centre the image.
    imageLabel_->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    setPreviewEnabled(true);
    connections_ << connect(tracker, &aSeePro::previewImageReady, this, &aSeeProPreviewWidget::refresh);
}

aSeeProPreviewWidget::~aSeeProPreviewWidget() {
    setPreviewEnabled(false);
}

QSize aSeeProPreviewWidget::sizeHint() const {
    return defaultSize;
}

void aSeeProPreviewWidget::setPreviewEnabled(bool on) {
    if (eyetracker_)
        eyetracker_->setPreviewEnabled(on);
}

void aSeeProPreviewWidget::showEvent(QShowEvent *) {
    setPreviewEnabled(true);
    refresh();
}

void aSeeProPreviewWidget::hideEvent(QHideEvent *) {
    setPreviewEnabled(false);
}

void aSeeProPreviewWidget::resizeEvent(QResizeEvent *) {
    if (!imageLabel_)
        return;
    imageLabel_->resize(size());
    refresh();
}

void aSeeProPreviewWidget::refresh() {
    // A hidden widget is refreshed when it is shown.
    if (!imageLabel_ || !isVisible() || width() < 1 || height() < 1)
        return;
    // Drops queued refreshes, which would accumulate if the computer is too slow for the camera.
    QCoreApplication::removePostedEvents(this, QEvent::MetaCall);
    QImage image = eyetracker_ ? eyetracker_->previewImage() : QImage();
    if (image.isNull())
        image = blackImage();
    // Scales before the conversion, because a smaller image is cheaper to convert.
    const QPixmap picture = QPixmap::fromImage(image.scaled(size(), Qt::KeepAspectRatio, Qt::FastTransformation));
    imageLabel_->setPixmap(picture);
    imageLabel_->move((width() - picture.width()) / 2, (height() - picture.height()) / 2);
}
