#include "asee/gaze_record.h"

#include <cstring>

namespace sim::asee_pro {

namespace {

namespace at = asee_sdk::gaze_record;

constexpr int eyeTracked = 0;
constexpr int eyeNotTracked = 2;
constexpr int eyeLost = 3;

constexpr int fixation = 1;
constexpr int saccade = 3;

constexpr double meanWeight = 0.2;  // of a new gaze point
constexpr double fixationRadius_deg = 1.5;

/// The offsets of the fields of one eye.
struct EyeFields {
    std::size_t gazeFlags, gaze, eyeFlags, eye, pupil_mm, status;
};
constexpr EyeFields leftFields{at::leftGazeFlags, at::leftGaze,     at::leftEyeFlags,
                               at::leftEye,       at::leftPupil_mm, at::leftStatus};
constexpr EyeFields rightFields{at::rightGazeFlags, at::rightGaze,     at::rightEyeFlags,
                                at::rightEye,       at::rightPupil_mm, at::rightStatus};

/// Writes the fields of a record.
class Writer {
public:
    template <typename T>
    void put(std::size_t offset, T value) {
        std::memcpy(record_.data() + offset, &value, sizeof value);
    }

    void putPoint(std::size_t offset, Point point) {
        put(offset, static_cast<float>(point.x));
        put(offset + sizeof(float), static_cast<float>(point.y));
    }

    void putEye(const EyeFields &fields, const Eye &eye, bool tracking) {
        put(fields.status, !eye.visible ? eyeLost : tracking ? eyeTracked : eyeNotTracked);
        if (!eye.visible)
            return;
        put(fields.eyeFlags, 1);
        putPoint(fields.eye, eye.pupilCentre);
        put(fields.pupil_mm, static_cast<float>(eye.pupil_mm));
        if (tracking) {
            put(fields.gazeFlags, 1);
            putPoint(fields.gaze, eye.gaze);
        }
    }

    [[nodiscard]] const GazeRecorder::Record &record() const { return record_; }

private:
    GazeRecorder::Record record_{};
};

Point combined(const EyeState &eyes) {
    if (eyes.left.visible && eyes.right.visible)
        return (eyes.left.gaze + eyes.right.gaze) * 0.5;
    return eyes.left.visible ? eyes.left.gaze : eyes.right.gaze;
}

}  // namespace

GazeRecorder::Record GazeRecorder::record(const EyeState &eyes, bool tracking) {
    Writer writer;
    writer.putEye(leftFields, eyes.left, tracking);
    writer.putEye(rightFields, eyes.right, tracking);
    if (tracking && (eyes.left.visible || eyes.right.visible)) {
        writer.putPoint(at::gaze, combined(eyes));
        writer.put(at::fixationState, fixationState(combined(eyes)));
    }
    return writer.record();
}

int GazeRecorder::fixationState(Point gaze) {
    const bool resting = setup_.degreesBetween(gaze, meanGaze_) < fixationRadius_deg;
    meanGaze_ = meanGaze_ + (gaze - meanGaze_) * meanWeight;
    return resting ? fixation : saccade;
}

}  // namespace sim::asee_pro
