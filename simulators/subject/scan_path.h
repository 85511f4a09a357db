#pragma once

#include "subject/eye_state.h"
#include "subject/physical_setup.h"
#include "subject/random.h"

#include <functional>
#include <optional>

namespace sim {

/// A time in which the gaze of the scan path rests on `position`. The eyes may be closed for a part of it.
struct PathFixation {
    double start_s = 0;
    double end_s = 0;
    Point position;
};

/// The scan path of the simulated person: fixations joined by saccades, without noise.
///
/// The path depends on the seed and on the goals, but not on how often at() is called.
class ScanPath {
public:
    /// The gaze does not move to a goal that is within `tolerance_deg` of the current fixation.
    ScanPath(const PhysicalSetup &setup, std::uint64_t seed, double tolerance_deg);

    /// `seconds` must not decrease from call to call.
    Point at(double seconds);

    /// Starts a saccade to `goal` after `latency_s`, and stays there until release().
    void attend(Point goal, double now_s, double latency_s);

    /// Returns to free viewing.
    void release(double now_s);

    /// Calls `ended` at the end of each fixation, from at().
    void onFixation(const std::function<void(const PathFixation &)> &ended) { fixationEnded_ = ended; }

private:
    struct Saccade {
        double start_s = 0;
        double duration_s = 0;
        Point from;
        Point to;

        [[nodiscard]] double end_s() const { return start_s + duration_s; }
        [[nodiscard]] Point at(double seconds) const;
    };

    void decide();
    void moveTo(Point target);
    Point nextTarget();

    PhysicalSetup setup_;
    Random random_;
    double tolerance_deg_;
    Saccade saccade_;
    double nextDecision_s_ = 0;  // end of the current fixation; infinite while the gaze rests on a goal
    std::optional<Point> goal_;
    std::function<void(const PathFixation &)> fixationEnded_;
};

}  // namespace sim
