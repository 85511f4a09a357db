#pragma once

#include "subject/eye_state.h"

#include <QByteArray>
#include <cstdint>

namespace sim::gazepoint {

/// A gaze point with its validity.
struct Gaze {
    Point point;
    bool valid = false;
};

/// One eye in the camera image and in space.
struct PupilRecord {
    Point centre;            ///< fraction of the image
    double diameter_px = 0;  ///< in the image
    double scale = 0;        ///< 1 at the distance of the calibration
    Point position_m;        ///< of the eye, relative to the centre of the screen
    double distance_m = 0;
    double diameter_mm = 0;
    bool valid = false;
};

struct Fixation {
    Point centre;
    double start_s = 0;  ///< TIME at its start
    double duration_s = 0;
    int id = 0;
    bool valid = false;  ///< false between fixations; the other fields then describe the last one
};

struct Blink {
    int id = 0;             ///< 0 while the eyes are open
    double duration_s = 0;  ///< only in the first record after a blink
    int perMinute = 0;
};

/// All values of one record. The switches of a client select the fields that are sent.
struct Record {
    std::int64_t count = 0;
    double time_s = 0;  ///< since the start of the server or the end of the last calibration
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
