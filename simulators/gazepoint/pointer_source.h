#pragma once

#include "subject/eye_state.h"

#include <QObject>
#include <QTimer>
#include <functional>

namespace sim::gazepoint {

/// Reports the position of the mouse pointer about 100 times per second, as fractions of the primary screen. Needs a
/// QGuiApplication.
class PointerSource : public QObject {
    Q_OBJECT

public:
    explicit PointerSource(const std::function<void(Point)> &report);

private:
    void poll();

    std::function<void(Point)> report_;
    QTimer timer_;
};

}  // namespace sim::gazepoint
