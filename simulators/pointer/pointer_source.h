#pragma once

#include "subject/eye_state.h"

#include <QObject>
#include <QRect>
#include <QTimer>
#include <functional>

namespace sim {

/// Reports the position of the mouse pointer about 100 times per second, as fractions of an area in desktop pixels.
/// Needs a QGuiApplication.
class PointerSource : public QObject {
    Q_OBJECT

public:
    PointerSource(QRect area, const std::function<void(Point)> &report);

private:
    void poll();

    const QRect area_;
    std::function<void(Point)> report_;
    QTimer timer_;
};

}  // namespace sim
