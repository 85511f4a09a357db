#pragma once

namespace sim {

/// A point as fractions of the width and height of a plane: (0, 0) is the upper left corner, (1, 1) the lower right
/// one.
struct Point {
    double x = 0;
    double y = 0;
};

inline Point operator+(Point a, Point b) {
    return {a.x + b.x, a.y + b.y};
}
inline Point operator-(Point a, Point b) {
    return {a.x - b.x, a.y - b.y};
}
inline Point operator*(Point a, double factor) {
    return {a.x * factor, a.y * factor};
}

/// One eye as an ideal tracker would measure it.
struct Eye {
    bool visible = false;  ///< false during blinks; the other fields are then undefined
    Point gaze;            ///< on the screen; outside 0..1 when the person looks past its edge
    double pupil_mm = 0;   ///< diameter
    Point pupilCentre;     ///< in the camera image
};

struct EyeState {
    Eye left;
    Eye right;
    double distance_cm = 0;  ///< from the eyes to the screen
};

}  // namespace sim
