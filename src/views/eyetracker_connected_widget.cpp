#include "views/eyetracker_connected_widget.h"

#include "core/eyetracker_interface.h"

#include <QEvent>
#include <QPainter>

namespace {

constexpr int diameter = 16;

const QBrush &brushFor(qint32 state) {
    static const QBrush connected(QColor(0x33, 0xCC, 0x00));
    static const QBrush disconnected(QColor(0xCC, 0x33, 0x00));
    static const QBrush unknown(QColor(0x99, 0x99, 0x99));
    switch (state) {
        case 1:
            return connected;
        case 0:
            return disconnected;
        default:
            return unknown;
    }
}

}  // namespace

EyetrackerConnectedWidget::EyetrackerConnectedWidget(QWidget *parent) : BaseEyetrackerWidget(parent) {
    setFixedSize(diameter, diameter);
    updateToolTip();
}

void EyetrackerConnectedWidget::eyetrackerChanged() {
    if (!eyetracker_) {
        setState(-1);
        return;
    }
    // Queued calls of the old tracker arrive even after its connection was disconnected.
    const auto show = [this, tracker = eyetracker_](bool connected) {
        if (tracker == eyetracker_)
            setState(connected ? 1 : 0);
    };
    connections_ << connect(eyetracker_, &EyetrackerInterface::connectedChanged, this, show, Qt::QueuedConnection);
    setState(eyetracker_->isConnected() ? 1 : 0);
}

void EyetrackerConnectedWidget::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    painter.fillRect(rect(), Qt::transparent);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(brushFor(state_));
    painter.drawEllipse(rect());
}

void EyetrackerConnectedWidget::changeEvent(QEvent *event) {
    if (event->type() == QEvent::LanguageChange)
        updateToolTip();
    BaseEyetrackerWidget::changeEvent(event);
}

void EyetrackerConnectedWidget::setState(qint32 state) {
    state_ = state;
    updateToolTip();
    update();
}

void EyetrackerConnectedWidget::updateToolTip() {
    if (state_ < 0)
        setToolTip(tr("No tracker"));
    else
        setToolTip(state_ == 1 ? tr("Connected") : tr("Disconnected"));
}
