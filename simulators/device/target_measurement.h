#pragma once

#include "subject/eye_state.h"

namespace sim {

/// Measures the gaze of both eyes while the person looks at one target.
class TargetMeasurement {
public:
    explicit TargetMeasurement(Point target) : target_(target) {}

    void add(const EyeState &eyes);

    struct Result {
        int sampleCount = 0;  ///< samples with a visible eye; if 0, the other fields are 0, too
        Point offset;         ///< of the mean gaze from the target, in fractions of the screen
        double error = 0;     ///< root mean square distance from the target, in fractions of the screen
    };
    [[nodiscard]] Result left() const { return left_.result(); }
    [[nodiscard]] Result right() const { return right_.result(); }

private:
    struct Sums {
        int sampleCount = 0;
        Point offset;
        double squares = 0;

        void add(Point difference);
        [[nodiscard]] Result result() const;
    };

    Point target_;
    Sums left_;
    Sums right_;
};

}  // namespace sim
