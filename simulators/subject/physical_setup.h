#pragma once

#include "subject/eye_state.h"
#include "subject/gaze_angles.h"

namespace sim {

/// The screen and the viewing distance. Converts between degrees of visual angle and fractions of the screen.
///
/// The conversion of distances is linear over the whole screen. With the default values, its scale differs from that of
/// the true angle by about 6 % at the centre and 12 % at the edges. turned() is exact.
struct PhysicalSetup {
    double screenWidth_cm = 53.1;  // a 24 inch display of 16:9
    double screenHeight_cm = 29.9;
    double distance_cm = 62;

    [[nodiscard]] double widthDegrees() const;
    [[nodiscard]] double heightDegrees() const;
    [[nodiscard]] double degreesBetween(Point a, Point b) const;
    /// Returns an offset of `x` and `y` degrees as fractions of the screen.
    [[nodiscard]] Point fromDegrees(double x, double y) const;
    /// Returns the gaze point after `rotation` was added to the azimuth and the elevation of `gaze`. The line from the
    /// eye to the centre of the screen is perpendicular to the screen. The resulting angles are limited to 85 degrees.
    [[nodiscard]] Point turned(Point gaze, GazeAngles rotation) const;
};

}  // namespace sim
