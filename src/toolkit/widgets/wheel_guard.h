#pragma once

#include <QObject>

class QWidget;

/// Lets the mouse wheel scroll the page instead of changing the value of a widget without focus. The widget passes
/// wheel events to its parents and does not get the focus from them. The widget owns this object. GUI thread.
class WheelGuard : public QObject {
    Q_OBJECT

public:
    explicit WheelGuard(QWidget *widget);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QWidget *widget_;
};
