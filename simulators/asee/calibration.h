#pragma once

#include "device/target_measurement.h"

#include <optional>
#include <vector>

namespace sim::asee_pro {

/// The points of one calibration and their measurements. Not thread-safe: the tracker guards it.
class Calibration {
public:
    static constexpr int maxPointCount = 9;

    explicit Calibration(int pointCount) : measured_(static_cast<std::size_t>(pointCount)) {}

    [[nodiscard]] bool hasPoint(int number) const;
    /// Stores the measurement of a point. Points are numbered from 1.
    void setMeasured(int number, const TargetMeasurement &measurement);
    [[nodiscard]] bool complete() const;

    struct Score {
        float left = 0;
        float right = 0;
    };
    /// Returns the mean error of each eye in percent of the screen, over the points at which the eye was visible.
    [[nodiscard]] Score score() const;

private:
    std::vector<std::optional<TargetMeasurement>> measured_;
};

}  // namespace sim::asee_pro
