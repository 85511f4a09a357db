#include "device/target_measurement.h"

#include <cmath>

namespace sim {

void TargetMeasurement::add(const EyeState &eyes) {
    if (eyes.left.visible)
        left_.add(eyes.left.gaze - target_);
    if (eyes.right.visible)
        right_.add(eyes.right.gaze - target_);
}

void TargetMeasurement::Sums::add(Point difference) {
    ++sampleCount;
    offset = offset + difference;
    squares += difference.x * difference.x + difference.y * difference.y;
}

TargetMeasurement::Result TargetMeasurement::Sums::result() const {
    if (sampleCount == 0)
        return {};
    return {sampleCount, offset * (1.0 / sampleCount), std::sqrt(squares / sampleCount)};
}

}  // namespace sim
