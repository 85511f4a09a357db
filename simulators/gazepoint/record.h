#pragma once

#include "subject/eye_state.h"

#include <QByteArray>
#include <cstdint>

namespace sim::gazepoint {

/// A place that the tracker reports with its validity.
struct Gaze {
    Point point;
    bool valid = false;
};

/// One eye in the camera image and in space.
struct PupilRecord {
    Point centre;            ///< fraction of the image
    double diameter_px = 0;  ///< in the image
    double scale = 0;        ///< 1 at the distance of the calibration
    Point position_m;        ///< of the eye, from the screen's centre
    double distance_m = 0;
    double diameter_mm = 0;
    bool valid = false;
};

struct Fixation {
    Point centre;
    double start = 0;     ///< TIME at which it began
    double duration = 0;  ///< seconds so far
    int id = 0;
    bool valid = false;  ///< false between fixations; the other fields then still tell the last one
};

struct Blink {
    int id = 0;           ///< 0 while the eyes are open
    double duration = 0;  ///< seconds; only in the first record after a blink
    int perMinute = 0;
};

/// All that one record of the data stream can tell; the switches choose what of it is sent.
struct Record {
    std::int64_t count = 0;
    double time = 0;  ///< seconds since the server's start or the last calibration
    std::int64_t tick = 0;
    Fixation fixation;
    Gaze left;
    Gaze right;
    Gaze best;
    PupilRecord leftPupil;
    PupilRecord rightPupil;
    Point cursor;
    Blink blink;
    QByteArray userData;
};

}  // namespace sim::gazepoint
