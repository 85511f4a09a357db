#pragma once

namespace sim::asee_pro {

/// The opaque block that a calibration yields: here our mark and the scores of the two eyes.
struct Coefficients {
    float leftScore = 0;
    float rightScore = 0;

    /// `bytes`: asee::coefficientBytes of them, all of which are written.
    void write(void *bytes) const;
    /// False when the block is none of ours.
    [[nodiscard]] static bool areIn(const void *bytes);
};

}  // namespace sim::asee_pro
