#include "app/gaze_cursor.h"

#include <QCursor>
#include <QGuiApplication>
#include <QScreen>
#include <algorithm>
#include <cstdlib>

namespace {

using gaze_cursor::Screen;
using Unit = EyetrackerInterface::PixelUnit;

/// A point with coordinates that do not overflow, because a device may send any pixels.
struct WidePoint {
    qint64 x;
    qint64 y;
};

WidePoint sum(QPoint a, QPoint b) {
    return {qint64(a.x()) + b.x(), qint64(a.y()) + b.y()};
}

QPoint nearestIn(const QRect &area, WidePoint point) {
    return {static_cast<int>(std::clamp<qint64>(point.x, area.left(), area.right())),
            static_cast<int>(std::clamp<qint64>(point.y, area.top(), area.bottom()))};
}

qint64 distance(WidePoint point, const QRect &area) {
    const QPoint nearest = nearestIn(area, point);
    return std::abs(point.x - nearest.x()) + std::abs(point.y - nearest.y());
}

/// Returns the area of the screen in pixels of the unit. Qt scales the size of a screen, but not its position.
QRect areaOf(const Screen &screen, Unit unit) {
    return unit == Unit::Desktop ? screen.geometry
                                 : QRect(screen.geometry.topLeft(), screen.geometry.size() * screen.pixelRatio);
}

}  // namespace

std::optional<gaze_cursor::Place> gaze_cursor::placeOf(const Gaze &gaze, const std::vector<Screen> &screens) {
    const WidePoint point = sum(gaze.pixel, gaze.origin);
    const auto found = std::min_element(screens.begin(), screens.end(), [&](const Screen &a, const Screen &b) {
        return distance(point, areaOf(a, gaze.unit)) < distance(point, areaOf(b, gaze.unit));
    });
    if (found == screens.end())
        return std::nullopt;
    const QPoint start = found->geometry.topLeft();
    const QPoint offset = nearestIn(areaOf(*found, gaze.unit), point) - start;
    const qreal ratio = gaze.unit == Unit::Desktop ? 1 : found->pixelRatio;
    // Truncated, because the last physical pixel belongs to the last desktop pixel.
    const QPoint scaled(static_cast<int>(offset.x() / ratio), static_cast<int>(offset.y() / ratio));
    return Place{static_cast<std::size_t>(found - screens.begin()), start + scaled};
}

void gaze_cursor::moveTo(const Gaze &gaze) {
    const QList<QScreen *> all = QGuiApplication::screens();
    std::vector<Screen> screens;
    for (const QScreen *screen : all)
        screens.push_back({screen->geometry(), screen->devicePixelRatio()});
    // The screen is passed, too: otherwise Qt would scale the position like the primary screen.
    if (const auto place = placeOf(gaze, screens))
        QCursor::setPos(all[static_cast<int>(place->screen)], place->position);
}
