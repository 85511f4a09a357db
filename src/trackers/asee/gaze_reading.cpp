#include "trackers/asee/gaze_reading.h"

namespace {

/// A number may be finite and its percent not: it is as little a place as an infinite one.
float percent(float fraction) {
    const float value = fraction * 100.0F;
    return std::isfinite(value) ? value : 0.0F;
}

FractionPoint mean(FractionPoint one, FractionPoint other) {
    return {one.x / 2 + other.x / 2, one.y / 2 + other.y / 2};
}

}  // namespace

FractionPoint gaze_reading::Eyes::centre() const {
    switch (seen) {
        case LeftOnly:
            return left;
        case RightOnly:
            return right;
        case Both:
            break;
    }
    return mean(left, right);
}

EyeTrackingSample gaze_reading::sampleOf(const GazeRecord &record, QSize area) {
    EyeTrackingSample sample;
    sample.l_valid = record.isLeftTracked();
    sample.r_valid = record.isRightTracked();
    sample.valid = sample.l_valid || sample.r_valid;
    sample.x = percent(record.gaze().x);
    sample.y = percent(record.gaze().y);
    sample.l_x = percent(record.leftGaze().x);
    sample.l_y = percent(record.leftGaze().y);
    sample.r_x = percent(record.rightGaze().x);
    sample.r_y = percent(record.rightGaze().y);
    sample.l_pupil_mm = record.leftPupil_mm();
    sample.r_pupil_mm = record.rightPupil_mm();
    sample.calculatePixels(area.width(), area.height());
    return sample;
}

FractionPoint gaze_reading::gazeOf(const GazeRecord &record) {
    if (record.isLeftGazeValid() && record.isRightGazeValid())
        return mean(record.leftGaze(), record.rightGaze());
    if (record.isLeftGazeValid())
        return record.leftGaze();
    return record.isRightGazeValid() ? record.rightGaze() : FractionPoint{0, 0};
}

gaze_reading::Eyes gaze_reading::eyesOf(const GazeRecord &record, const Eyes &before) {
    const FractionPoint unseen{-1, -1};
    if (record.isLeftEyeSeen() && record.isRightEyeSeen())
        return {record.leftEye(), record.rightEye(), Eyes::Both};
    if (record.isLeftEyeSeen())
        return {record.leftEye(), unseen, Eyes::LeftOnly};
    return record.isRightEyeSeen() ? Eyes{unseen, record.rightEye(), Eyes::RightOnly} : before;
}
