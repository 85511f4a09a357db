#pragma once

#include <QComboBox>
#include <QWheelEvent>

/// A combo box that ignores the mouse wheel, because a stray turn would select another tracker and stop the device. GUI
/// thread.
class WheelProofComboBox : public QComboBox {
    Q_OBJECT

public:
    using QComboBox::QComboBox;

protected:
    void wheelEvent(QWheelEvent *event) override { event->ignore(); }
};
