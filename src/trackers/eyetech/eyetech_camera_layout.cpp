#include "trackers/eyetech/eyetech_camera_layout.h"

#include <algorithm>

namespace layout = eyetech::camera_layout;

namespace {

constexpr double cameraWidth = 2048;
constexpr double cameraHeight = 1080;
constexpr double aspect = cameraWidth / cameraHeight;

constexpr double min_cm = 35;
constexpr double max_cm = 75;

/// The radii of a marker in camera pixels, at a size factor of 1.
constexpr double markerRadiusX = 100;
constexpr double markerRadiusY = 50;

}  // namespace

// Both limits of a range are excluded: 50 cm is `Fair`.
layout::Distance layout::rate(float distance_cm) {
    const auto within = [distance_cm](float nearer, float farther) {
        return nearer < distance_cm && distance_cm < farther;
    };
    if (within(50, 60))
        return Distance::Good;
    if (within(45, 65))
        return Distance::Fair;
    if (within(40, 70))
        return Distance::Middling;
    return within(35, 75) ? Distance::Poor : Distance::Bad;
}

QColor layout::colourOf(Distance distance) {
    static const char *const colours[distanceCount] = {"#3C0", "#9C0", "#EE0", "#F90", "#C30"};
    return QColor(colours[static_cast<int>(distance)]);
}

float layout::sizeFactor(float distance_cm) {
    const double distance = std::clamp(static_cast<double>(distance_cm), min_cm, max_cm);
    return static_cast<float>(1.3 - (distance - min_cm) * 0.6 / 40);
}

layout::Fit layout::fit(QSize widget) {
    const double width = widget.width();
    const double height = widget.height();
    QSize size = widget;
    if (width / height >= aspect)
        size.setWidth(static_cast<int>(height * aspect));
    else
        size.setHeight(static_cast<int>(width / aspect));
    const QSize bands = widget - size;
    return {size, {bands.width() / 2, bands.height() / 2}, size.width() / cameraWidth};
}

QRectF layout::marker(QPointF pupilCentre, double scale, float factor) {
    const QPointF radii = QPointF(markerRadiusX, markerRadiusY) * scale * static_cast<double>(factor);
    return {pupilCentre * scale - radii, pupilCentre * scale + radii};
}
