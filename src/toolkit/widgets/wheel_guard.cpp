#include "toolkit/widgets/wheel_guard.h"

#include <QEvent>
#include <QWidget>

WheelGuard::WheelGuard(QWidget *widget) : QObject(widget), widget_(widget) {
    widget_->setFocusPolicy(Qt::StrongFocus);
    widget_->installEventFilter(this);
}

bool WheelGuard::eventFilter(QObject *watched, QEvent *event) {
    if (event->type() != QEvent::Wheel || widget_->hasFocus())
        return QObject::eventFilter(watched, event);
    event->ignore();
    return true;
}
