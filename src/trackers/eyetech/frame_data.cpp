#include "trackers/eyetech/frame_data.h"

#include <cmath>
#include <cstring>

namespace {

template <typename Value>
Value read(const QLFrameRecord &record, int offset) {
    Value value;
    std::memcpy(&value, record.bytes + offset, sizeof value);
    return value;
}

bool isUsable(int side) {
    return side > 0 && side <= QLFrameData::longestSide;
}

}  // namespace

void QLFrameData::copyImage() {
    const auto *pixels = read<const unsigned char *>(record, frame_record::imagePixels);
    const int width = read<std::int32_t>(record, frame_record::imageWidth);
    const int height = read<std::int32_t>(record, frame_record::imageHeight);
    image = QImage();
    if (pixels && isUsable(width) && isUsable(height))
        image = QImage(pixels, width, height, width, QImage::Format_Grayscale8).copy();
}

bool QLFrameData::lacksImage() const {
    return image.isNull() && read<std::int32_t>(record, frame_record::imageWidth) != 0;
}

float QLFrameData::number(int offset) const {
    const auto value = read<float>(record, offset);
    return std::isfinite(value) ? value : 0.0F;
}

QLFrameData::Eye QLFrameData::eye(int offset) const {
    const int centre = offset + frame_record::eyePupilCentre;
    const int gaze = offset + frame_record::eyeGaze;
    return {flag(offset + frame_record::eyeFound),
            number(offset + frame_record::eyePupil_mm),
            number(centre),
            number(centre + 4),
            number(gaze),
            number(gaze + 4)};
}
