#pragma once

#include "gazepoint/record.h"
#include "subject/physical_setup.h"

#include <deque>

namespace sim::gazepoint {

/// Finds fixations in the stream of gaze points by their dispersion, as the server's own filter does.
///
/// A fixation is reported once the gaze has stayed together for about 50 ms and is then dated back to where
/// it began. It ends with the first sample that leaves it or has no gaze; until the next one its values stay
/// as they were.
class FixationDetector {
public:
    explicit FixationDetector(const PhysicalSetup &setup);

    const Fixation &add(double time, const Gaze &gaze);

    /// The clock starts again at zero: the fixation before that no longer has a meaningful time.
    void restart();

private:
    struct Sample {
        double time = 0;
        Point point;
    };

    void extend(double time, Point point);
    void search(double time, Point point);
    void begin();
    [[nodiscard]] bool together(Point a, Point b) const;

    PhysicalSetup setup_;
    Fixation fixation_;
    std::deque<Sample> candidates_;  // the latest samples that lie together; empty during a fixation
    Point sum_;
    int samples_ = 0;
};

}  // namespace sim::gazepoint
