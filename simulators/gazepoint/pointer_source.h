#pragma once

#include "subject/eye_state.h"

#include <QObject>
#include <QTimer>
#include <functional>

namespace sim::gazepoint {

/// Reports where the mouse pointer is on the primary screen, in fractions of it, about 100 times a second.
/// Needs a QGuiApplication.
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
