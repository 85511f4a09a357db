#pragma once

#include "core/eye_tracking_sample.h"
#include "trackers/asee/gaze_record.h"

#include <QSize>

/// What the program makes of gaze records. Pure functions; reentrant.
namespace gaze_reading {

/// Where the eyes were last seen, in fractions of the camera image.
struct Eyes {
    enum Seen { Both = 0, LeftOnly = 1, RightOnly = 2 };

    FractionPoint left{-1, -1};  ///< (-1, -1) while that eye is not seen
    FractionPoint right{-1, -1};
    Seen seen = Both;

    /// The place that stands for the eyes that are seen.
    [[nodiscard]] FractionPoint centre() const;
};

/// The sample that a record holds; pixels count from the top-left corner of an area of that size. Its timestamp
/// stays 0: that is intended.
[[nodiscard]] EyeTrackingSample sampleOf(const GazeRecord &record, QSize area);

/// The gaze point of the calibration screen: the mean of the valid eyes, (0, 0) without any.
[[nodiscard]] FractionPoint gazeOf(const GazeRecord &record);

/// The eyes as the record shows them; as before when it shows none.
[[nodiscard]] Eyes eyesOf(const GazeRecord &record, const Eyes &before);

}  // namespace gaze_reading
