#include "gazepoint/pointer_source.h"

#include <QCursor>
#include <QGuiApplication>
#include <QScreen>

namespace sim::gazepoint {

namespace {

constexpr int pollIntervalMs = 10;

}  // namespace

PointerSource::PointerSource(const std::function<void(Point)> &report) : report_(report) {
    connect(&timer_, &QTimer::timeout, this, &PointerSource::poll);
    timer_.start(pollIntervalMs);
    poll();
}

void PointerSource::poll() {
    const QScreen *screen = QGuiApplication::primaryScreen();
    if (!screen || screen->geometry().isEmpty())
        return;
    const QRect area = screen->geometry();
    const QPoint position = QCursor::pos() - area.topLeft();
    report_({static_cast<double>(position.x()) / area.width(), static_cast<double>(position.y()) / area.height()});
}

}  // namespace sim::gazepoint
