#pragma once

#include "device/target_measurement.h"

#include <optional>
#include <vector>

namespace sim::asee_pro {

/// The points of one calibration and what was measured at them. Not thread-safe: the tracker guards it.
class Calibration {
public:
    static constexpr int kMostPoints = 9;

    explicit Calibration(int points) : measured_(static_cast<std::size_t>(points)) {}

    [[nodiscard]] bool hasPoint(int number) const;
    /// Points are numbered from 1; measuring one again replaces what was.
    void setMeasured(int number, const TargetMeasurement &measurement);
    [[nodiscard]] bool complete() const;

    struct Score {
        float left = 0;
        float right = 0;
    };
    /// The mean error of each eye in percent of the screen, over the points at which it was seen.
    [[nodiscard]] Score score() const;

private:
    std::vector<std::optional<TargetMeasurement>> measured_;
};

}  // namespace sim::asee_pro
