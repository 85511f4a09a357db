#include "trackers/eyetech/eyetech_record_reader.h"

#include "core/pixels.h"

#include <cmath>
#include <cstring>

namespace {

namespace at = quicklink2::frame_record;

template <typename Value>
Value read(const quicklink2::QLFrameRecord &record, int offset) {
    Value value;
    std::memcpy(&value, record.bytes + offset, sizeof value);
    return value;
}

bool isValidSide(int side) {
    return side > 0 && side <= QLFrameData::maxImageSide;
}

}  // namespace

void QLFrameData::copyImage() {
    const auto *pixels = read<const unsigned char *>(record, at::imagePixels);
    const int width = read<std::int32_t>(record, at::imageWidth);
    const int height = read<std::int32_t>(record, at::imageHeight);
    image = QImage();
    if (pixels && isValidSide(width) && isValidSide(height))
        image = QImage(pixels, width, height, width, QImage::Format_Grayscale8).copy();
}

void QLFrameData::removeImage() {
    constexpr int imageFieldBytes = at::imageHeight + 4;
    std::memset(record.bytes + at::imagePixels, 0, imageFieldBytes);
    image = QImage();
}

bool QLFrameData::hasInvalidImage() const {
    return image.isNull() && read<std::int32_t>(record, at::imageWidth) != 0;
}

float QLFrameData::number(int offset) const {
    const auto value = read<float>(record, offset);
    return std::isfinite(value) ? value : 0.0F;
}

QLFrameData::Eye QLFrameData::eye(int offset) const {
    const int centre = offset + at::eyePupilCentre;
    const int gaze = offset + at::eyeGaze;
    return {flag(offset + at::eyeFound),
            number(offset + at::eyePupil_mm),
            number(centre),
            number(centre + 4),
            number(gaze),
            number(gaze + 4)};
}

EyeTrackingSample eyetech::sampleOf(const QLFrameData &frame, QSize area, qint64 timestampMs) {
    const QLFrameData::Eye left = frame.leftEye();
    const QLFrameData::Eye right = frame.rightEye();
    EyeTrackingSample sample;
    sample.timestamp = timestampMs;
    sample.valid = frame.gazeValid();
    sample.l_valid = left.found;
    sample.r_valid = right.found;
    sample.x = frame.x();
    sample.y = frame.y();
    sample.l_x = left.x;
    sample.l_y = left.y;
    sample.r_x = right.x;
    sample.r_y = right.y;
    sample.calculatePixels(area.width(), area.height());
    sample.l_pupil_x = pixels::truncated(left.pupilX);
    sample.l_pupil_y = pixels::truncated(left.pupilY);
    sample.r_pupil_x = pixels::truncated(right.pupilX);
    sample.r_pupil_y = pixels::truncated(right.pupilY);
    sample.l_pupil_mm = left.pupil_mm;
    sample.r_pupil_mm = right.pupil_mm;
    sample.focus = frame.focus();
    sample.distance_cm = frame.distance_cm();
    return sample;
}
