#pragma once

#include "subject/eye_state.h"

namespace sim {

/// What was seen of the two eyes while the person was to look at one target.
class TargetMeasurement {
public:
    explicit TargetMeasurement(Point target) : target_(target) {}

    void add(const EyeState &eyes);

    struct Result {
        int samples = 0;   ///< those with the eye open; without any the rest is 0
        Point offset;      ///< of the mean gaze from the target, in fractions of the screen
        double error = 0;  ///< root mean square distance from the target, likewise
    };
    [[nodiscard]] Result left() const { return left_.result(); }
    [[nodiscard]] Result right() const { return right_.result(); }

private:
    struct Sums {
        int samples = 0;
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
