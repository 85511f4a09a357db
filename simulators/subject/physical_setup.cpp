#include "subject/physical_setup.h"

#include <algorithm>
#include <cmath>

namespace sim {

namespace {

constexpr double degreesPerRadian = 57.29577951308232;
constexpr double maxGazeAngle_deg = 85;  // at 90 degrees, the gaze does not meet the plane of the screen

double visualAngle(double size_cm, double distance_cm) {
    return 2 * std::atan(size_cm / 2 / distance_cm) * degreesPerRadian;
}

/// Returns the tangent of the sum of an angle and a rotation.
double tangentOfSum(double radians, double rotation_deg) {
    const double sum_deg = std::clamp(radians * degreesPerRadian + rotation_deg, -maxGazeAngle_deg, maxGazeAngle_deg);
    return std::tan(sum_deg / degreesPerRadian);
}

}  // namespace

double PhysicalSetup::widthDegrees() const {
    return visualAngle(screenWidth_cm, distance_cm);
}

double PhysicalSetup::heightDegrees() const {
    return visualAngle(screenHeight_cm, distance_cm);
}

double PhysicalSetup::degreesBetween(Point a, Point b) const {
    return std::hypot((a.x - b.x) * widthDegrees(), (a.y - b.y) * heightDegrees());
}

Point PhysicalSetup::fromDegrees(double x, double y) const {
    return {x / widthDegrees(), y / heightDegrees()};
}

Point PhysicalSetup::turned(Point gaze, GazeAngles rotation) const {
    const double x_cm = (gaze.x - 0.5) * screenWidth_cm;
    const double y_cm = (gaze.y - 0.5) * screenHeight_cm;
    const double azimuth = std::atan2(x_cm, distance_cm);
    const double elevation = std::atan2(y_cm, std::hypot(x_cm, distance_cm));
    const double turnedX_cm = distance_cm * tangentOfSum(azimuth, rotation.azimuth_deg);
    const double turnedY_cm = std::hypot(turnedX_cm, distance_cm) * tangentOfSum(elevation, rotation.elevation_deg);
    return {0.5 + turnedX_cm / screenWidth_cm, 0.5 + turnedY_cm / screenHeight_cm};
}

}  // namespace sim
