#pragma once

#include "subject/eye_state.h"

namespace sim {

/// The desk at which the person sits: turns degrees of visual angle into fractions of the screen and back.
///
/// The conversion is linear over the whole screen, which is within 5 % of the true angle on a desktop
/// display.
struct PhysicalSetup {
    double screenWidth_cm = 53.1;  // a 24 inch display of 16:9
    double screenHeight_cm = 29.9;
    double distance_cm = 62;

    [[nodiscard]] double widthDegrees() const;
    [[nodiscard]] double heightDegrees() const;
    [[nodiscard]] double degreesBetween(Point a, Point b) const;
    /// The offset on the screen, in fractions, that `x` and `y` degrees make.
    [[nodiscard]] Point fromDegrees(double x, double y) const;
};

}  // namespace sim
