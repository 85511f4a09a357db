#include "subject/physical_setup.h"

#include <cmath>

namespace sim {

namespace {

constexpr double degreesPerRadian = 57.29577951308232;

double visualAngle(double size_cm, double distance_cm) {
    return 2 * std::atan(size_cm / 2 / distance_cm) * degreesPerRadian;
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

}  // namespace sim
