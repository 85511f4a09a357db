#pragma once

#include "gazepoint/record.h"
#include "subject/physical_setup.h"

#include <deque>

namespace sim::gazepoint {

/// Detects fixations by the dispersion of the gaze points, like the server.
///
/// A fixation is reported about 50 ms after it started, with its real start time. It ends with the first sample that is
/// invalid or too far away. Between fixations, the values of the last one are kept.
class FixationDetector {
public:
    explicit FixationDetector(const PhysicalSetup &setup);

    const Fixation &add(double time_s, const Gaze &gaze);

    /// Call this when the clock restarts at 0. Drops the last fixation, whose time is then meaningless.
    void restart();

private:
    struct Sample {
        double time_s = 0;
        Point point;
    };

    void extend(double time_s, Point point);
    void search(double time_s, Point point);
    void start();
    [[nodiscard]] bool together(Point a, Point b) const;

    PhysicalSetup setup_;
    Fixation fixation_;
    std::deque<Sample> candidates_;  // the latest samples that are close together; empty during a fixation
    Point sum_;
    int sampleCount_ = 0;
};

}  // namespace sim::gazepoint
