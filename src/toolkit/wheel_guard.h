#pragma once

#include <QObject>

class QWidget;

/// Keeps the mouse wheel from changing a value that the user only scrolls past: a widget without the focus
/// passes its wheel events on to its parents, and the wheel no longer gives it the focus. Owned by the widget
/// it guards.
class WheelGuard : public QObject {
    Q_OBJECT

public:
    explicit WheelGuard(QWidget *widget);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QWidget *widget_;
};
