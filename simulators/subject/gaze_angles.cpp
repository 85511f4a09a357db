#include "subject/gaze_angles.h"

#include <QStringList>
#include <cmath>

namespace sim {

std::optional<GazeAngles> parseGazeAngles(const QString &text) {
    const QStringList numbers = text.split(',');
    bool firstOk = false;
    bool lastOk = false;
    const GazeAngles angles{numbers.first().toDouble(&firstOk), numbers.last().toDouble(&lastOk)};
    const bool finite = std::isfinite(angles.azimuth_deg) && std::isfinite(angles.elevation_deg);
    if (!firstOk || !lastOk || !finite || numbers.size() > 2)
        return std::nullopt;
    return angles;
}

}  // namespace sim
