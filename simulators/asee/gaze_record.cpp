#include "asee/gaze_record.h"

#include <cstring>

namespace sim::asee_pro {

namespace {

namespace at = asee::gaze_record;

constexpr int kTracked = 0;
constexpr int kNotTracked = 2;
constexpr int kEyeLost = 3;

constexpr int kFixation = 1;
constexpr int kSaccade = 3;

constexpr double kSettling = 0.2;  // what a new gaze point adds to the mean
constexpr double kFixationSize_deg = 1.5;

template <typename T>
void put(GazeRecorder::Record *record, std::size_t offset, T value) {
    std::memcpy(record->data() + offset, &value, sizeof value);
}

void putPoint(GazeRecorder::Record *record, std::size_t offset, Point point) {
    put(record, offset, static_cast<float>(point.x));
    put(record, offset + sizeof(float), static_cast<float>(point.y));
}

/// Where the fields of one eye stand.
struct EyeFields {
    std::size_t gazeFlags, gaze, eyeFlags, eye, pupil_mm, status;
};
constexpr EyeFields kLeft{at::leftGazeFlags, at::leftGaze,     at::leftEyeFlags,
                          at::leftEye,       at::leftPupil_mm, at::leftStatus};
constexpr EyeFields kRight{at::rightGazeFlags, at::rightGaze,     at::rightEyeFlags,
                           at::rightEye,       at::rightPupil_mm, at::rightStatus};

void putEye(GazeRecorder::Record *record, const EyeFields &fields, const Eye &eye, bool tracking) {
    put(record, fields.status, !eye.visible ? kEyeLost : tracking ? kTracked : kNotTracked);
    if (!eye.visible)
        return;
    put(record, fields.eyeFlags, 1);
    putPoint(record, fields.eye, eye.pupilCentre);
    put(record, fields.pupil_mm, static_cast<float>(eye.pupil_mm));
    if (tracking) {
        put(record, fields.gazeFlags, 1);
        putPoint(record, fields.gaze, eye.gaze);
    }
}

Point combined(const EyeState &eyes) {
    if (eyes.left.visible && eyes.right.visible)
        return (eyes.left.gaze + eyes.right.gaze) * 0.5;
    return eyes.left.visible ? eyes.left.gaze : eyes.right.gaze;
}

}  // namespace

GazeRecorder::Record GazeRecorder::record(const EyeState &eyes, bool tracking) {
    Record record{};
    putEye(&record, kLeft, eyes.left, tracking);
    putEye(&record, kRight, eyes.right, tracking);
    if (tracking && (eyes.left.visible || eyes.right.visible)) {
        putPoint(&record, at::gaze, combined(eyes));
        put(&record, at::fixationState, fixationState(combined(eyes)));
    }
    return record;
}

int GazeRecorder::fixationState(Point gaze) {
    const bool resting = setup_.degreesBetween(gaze, settled_) < kFixationSize_deg;
    settled_ = settled_ + (gaze - settled_) * kSettling;
    return resting ? kFixation : kSaccade;
}

}  // namespace sim::asee_pro
