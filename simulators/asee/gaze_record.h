#pragma once

#include "subject/eye_state.h"
#include "subject/physical_setup.h"
#include "trackers/asee/asee_sdk.h"

#include <array>

namespace sim::asee_pro {

/// Turns what is to be seen of the person into the vendor's gaze records, one after another: it tells fixations from
/// saccades by what came before.
class GazeRecorder {
public:
    using Record = std::array<unsigned char, asee::gaze_record::bytes>;

    explicit GazeRecorder(const PhysicalSetup &setup) : setup_(setup) {}

    /// `tracking`: the tracker is calibrated; without that it sees eyes, but tells no gaze.
    Record record(const EyeState &eyes, bool tracking);

private:
    int fixationState(Point gaze);

    PhysicalSetup setup_;
    Point settled_;  // a mean of the latest gaze points
};

}  // namespace sim::asee_pro
