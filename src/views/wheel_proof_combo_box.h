#pragma once

#include <QComboBox>
#include <QWheelEvent>

/// A list of choices that ignores the mouse wheel, because a stray turn would stop a device. GUI thread.
class WheelProofComboBox : public QComboBox {
    Q_OBJECT

public:
    using QComboBox::QComboBox;

protected:
    void wheelEvent(QWheelEvent *event) override { event->ignore(); }
};
