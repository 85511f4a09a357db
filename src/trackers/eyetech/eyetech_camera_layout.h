#pragma once

#include <QColor>
#include <QPoint>
#include <QRectF>
#include <QSize>

/// The geometry and colours of the camera view. Reentrant.
namespace eyetech::camera_layout {

/// Ratings of the user's distance. `Bad` is too near, too far or unknown (0 cm).
enum class Distance { Good, Fair, Middling, Poor, Bad };
constexpr int distanceCount = 5;

[[nodiscard]] Distance rate(float distance_cm);
[[nodiscard]] QColor colourOf(Distance distance);

/// Returns the size factor of the pupil markers: 1.3 at 35 cm, 0.7 at 75 cm.
[[nodiscard]] float sizeFactor(float distance_cm);

/// The position of the camera image in a widget.
struct Fit {
    QSize size;
    QPoint offset;
    double scale = 0;  ///< widget pixels per camera pixel
};
[[nodiscard]] Fit fit(QSize widget);

/// Returns the bounds of a pupil marker, in widget pixels relative to the image. `pupilCentre` is in camera pixels.
[[nodiscard]] QRectF marker(QPointF pupilCentre, double scale, float factor);

}  // namespace eyetech::camera_layout
