#include "pointer/pointer_source.h"

#include <QCursor>

namespace sim {

namespace {

constexpr int pollIntervalMs = 10;

}  // namespace

PointerSource::PointerSource(QRect area, const std::function<void(Point)> &report) : area_(area), report_(report) {
    if (area_.isEmpty())
        return;
    connect(&timer_, &QTimer::timeout, this, &PointerSource::poll);
    timer_.start(pollIntervalMs);
    poll();
}

void PointerSource::poll() {
    const QPoint position = QCursor::pos() - area_.topLeft();
    report_({static_cast<double>(position.x()) / area_.width(), static_cast<double>(position.y()) / area_.height()});
}

}  // namespace sim
