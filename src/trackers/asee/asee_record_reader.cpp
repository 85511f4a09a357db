#include "trackers/asee/asee_record_reader.h"

#include <cmath>
#include <cstring>

using asee::FractionPoint;

namespace {

template <typename T>
T read(const char *address) {
    T value;
    std::memcpy(&value, address, sizeof value);
    return value;
}

float finiteOr0(float value) {
    return std::isfinite(value) ? value : 0.0F;
}

/// A finite fraction can overflow as a percentage.
float percent(float fraction) {
    return finiteOr0(fraction * 100.0F);
}

FractionPoint mean(FractionPoint one, FractionPoint other) {
    return {one.x / 2 + other.x / 2, one.y / 2 + other.y / 2};
}

}  // namespace

std::int32_t asee::GazeRecord::integerAt(std::size_t offset) const {
    return read<std::int32_t>(record_ + offset);
}

float asee::GazeRecord::numberAt(std::size_t offset) const {
    return finiteOr0(read<float>(record_ + offset));
}

FractionPoint asee::GazeRecord::pointAt(std::size_t offset) const {
    return {numberAt(offset), numberAt(offset + sizeof(float))};
}

FractionPoint asee::Eyes::centre() const {
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

EyeTrackingSample asee::sampleOf(const GazeRecord &record, QSize area) {
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

FractionPoint asee::gazeOf(const GazeRecord &record) {
    if (record.isLeftGazeValid() && record.isRightGazeValid())
        return mean(record.leftGaze(), record.rightGaze());
    if (record.isLeftGazeValid())
        return record.leftGaze();
    return record.isRightGazeValid() ? record.rightGaze() : FractionPoint{0, 0};
}

asee::Eyes asee::eyesOf(const GazeRecord &record, const Eyes &previous) {
    const FractionPoint unseen{-1, -1};
    if (record.isLeftEyeSeen() && record.isRightEyeSeen())
        return {record.leftEye(), record.rightEye(), Eyes::Both};
    if (record.isLeftEyeSeen())
        return {record.leftEye(), unseen, Eyes::LeftOnly};
    return record.isRightEyeSeen() ? Eyes{unseen, record.rightEye(), Eyes::RightOnly} : previous;
}
