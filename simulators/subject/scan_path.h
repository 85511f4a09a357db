#pragma once

#include "subject/eye_state.h"
#include "subject/physical_setup.h"
#include "subject/random.h"

#include <optional>

namespace sim {

/// Where the person's attention is on the screen: fixations joined by saccades, free of noise.
///
/// The path depends on the seed and on what the person is asked to attend to, never on how often it is looked
/// at.
class ScanPath {
public:
    ScanPath(const PhysicalSetup &setup, std::uint64_t seed);

    /// `seconds` must not run backwards.
    Point at(double seconds);

    /// From `now` on the person turns to `goal` after `latency` seconds and stays there until release().
    void attend(Point goal, double now, double latency);

    /// The person looks around freely again.
    void release(double now);

private:
    struct Saccade {
        double start = 0;
        double duration = 0;
        Point from;
        Point to;

        [[nodiscard]] double end() const { return start + duration; }
        [[nodiscard]] Point at(double seconds) const;
    };

    void decide();
    void moveTo(Point target);
    Point nextTarget();

    PhysicalSetup setup_;
    Random random_;
    Saccade saccade_;
    double nextDecision_ = 0;  // when the current fixation ends; infinite while a goal holds the eyes
    std::optional<Point> goal_;
};

}  // namespace sim
