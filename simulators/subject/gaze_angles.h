#pragma once

#include <QString>
#include <optional>

namespace sim {

/// A direction of gaze in degrees, or a difference of two directions.
///
/// The angles are Fick angles: the azimuth is the rotation about the vertical axis, the elevation is the angle from the
/// horizontal plane. A person who looks at the centre of the screen has 0, 0.
struct GazeAngles {
    double azimuth_deg = 0;    ///< positive to the right
    double elevation_deg = 0;  ///< positive downward
};

inline GazeAngles operator+(GazeAngles a, GazeAngles b) {
    return {a.azimuth_deg + b.azimuth_deg, a.elevation_deg + b.elevation_deg};
}

/// Parses "AZIMUTH,ELEVATION", or one number for both. The numbers must be finite.
std::optional<GazeAngles> parseGazeAngles(const QString &text);

}  // namespace sim
