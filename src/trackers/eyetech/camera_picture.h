#pragma once

#include <QColor>
#include <QPoint>
#include <QRectF>
#include <QSize>

/// What the camera view draws where, and in which colour. Pure functions.
namespace camera_picture {

/// How good a distance is: green in the middle, then yellow-green, yellow, orange, and red for too near, too far, or
/// unknown (0).
enum class Distance { Good, Fair, Middling, Poor, Bad };
constexpr int distanceCount = 5;

[[nodiscard]] Distance rate(float distance_cm);
[[nodiscard]] QColor colourOf(Distance distance);

/// How large the pupils are drawn: the larger the nearer, 1.3 at 35 cm to 0.7 at 75 cm.
[[nodiscard]] float sizeFactor(float distance_cm);

/// Where a camera frame is drawn in a widget, as large as fits.
struct Fit {
    QSize size;
    QPoint offset;
    double scale = 0;  ///< widget pixels a camera pixel
};
[[nodiscard]] Fit fit(QSize widget);

/// The marker of a pupil, in pixels from the picture's corner.
[[nodiscard]] QRectF marker(QPointF pupilCentre, double scale, float factor);

}  // namespace camera_picture
