#pragma once

#include "subject/eye_state.h"
#include "subject/physical_setup.h"
#include "trackers/asee/sdk/asee_sdk.h"

#include <array>

namespace sim::asee_pro {

/// Writes the vendor's gaze records. Remembers the previous samples, to distinguish fixations from saccades.
class GazeRecorder {
public:
    using Record = std::array<unsigned char, asee_sdk::gaze_record::sizeBytes>;

    explicit GazeRecorder(const PhysicalSetup &setup) : setup_(setup) {}

    /// Without `tracking`, the record has the positions of the eyes, but no gaze.
    Record record(const EyeState &eyes, bool tracking);

private:
    int fixationState(Point gaze);

    PhysicalSetup setup_;
    Point meanGaze_;  // exponential moving average
};

}  // namespace sim::asee_pro
