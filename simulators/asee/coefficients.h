#pragma once

namespace sim::asee_pro {

/// The opaque result of a calibration: a mark of this simulator and the scores of both eyes.
struct Coefficients {
    float leftScore = 0;
    float rightScore = 0;

    /// Fills `bytes`, an array of asee_sdk::coefficientBytes.
    void write(void *bytes) const;
    /// Returns true if `bytes` starts with the mark. A null pointer is allowed.
    [[nodiscard]] static bool areIn(const void *bytes);
};

}  // namespace sim::asee_pro
