#include "trackers/asee/asee_pro_preview_widget.h"

#include "trackers/asee/asee_pro.h"

#include <QCoreApplication>
#include <QLabel>
#include <QPixmap>

namespace {

constexpr QSize usualSize(400, 320);

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
    // The label is moved to where the picture is to begin.
    imageLabel_->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    setPreviewEnabled(true);
    connections_ << connect(tracker, &aSeePro::previewImageReady, this, &aSeeProPreviewWidget::refresh);
}

aSeeProPreviewWidget::~aSeeProPreviewWidget() {
    setPreviewEnabled(false);
}

QSize aSeeProPreviewWidget::sizeHint() const {
    return usualSize;
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
    // Hidden, it is refreshed when it is shown.
    if (!imageLabel_ || !isVisible() || width() < 1 || height() < 1)
        return;
    // What was queued until now is about images that this one comes after. On a machine that is too slow for the camera
    // it would pile up.
    QCoreApplication::removePostedEvents(this, QEvent::MetaCall);
    QImage image = eyetracker_ ? eyetracker_->previewImage() : QImage();
    if (image.isNull())
        image = blackImage();
    // Scaled first: the few pixels that are left are cheaper to convert.
    const QPixmap picture = QPixmap::fromImage(image.scaled(size(), Qt::KeepAspectRatio, Qt::FastTransformation));
    imageLabel_->setPixmap(picture);
    imageLabel_->move((width() - picture.width()) / 2, (height() - picture.height()) / 2);
}
