#include "eyetech/frame_record.h"

#include <cstring>

namespace sim::eyetech {

namespace {

constexpr float kFocus = 0.8F;

template <typename T>
void put(QLFrameRecord *record, int offset, T value) {
    std::memcpy(record->bytes + offset, &value, sizeof value);
}

void putPoint(QLFrameRecord *record, int offset, Point point, double xUnit, double yUnit) {
    put(record, offset, static_cast<float>(point.x * xUnit));
    put(record, offset + 4, static_cast<float>(point.y * yUnit));
}

void putPercent(QLFrameRecord *record, int offset, Point point) {
    putPoint(record, offset, point, 100, 100);
}

void putEye(QLFrameRecord *record, int block, const Eye &eye, int cameraWidth, int cameraHeight) {
    if (!eye.visible)
        return;
    put(record, block + frame_record::eyeFound, true);
    put(record, block + frame_record::eyePupil_mm, static_cast<float>(eye.pupil_mm));
    putPoint(record, block + frame_record::eyePupilCentre, eye.pupilCentre, cameraWidth, cameraHeight);
    putPercent(record, block + frame_record::eyeGaze, eye.gaze);
}

/// The gaze of both eyes weighted alike, or that of the one that is seen.
void putCombined(QLFrameRecord *record, const EyeState &eyes) {
    const double left = eyes.left.visible ? 1 : 0;
    const double right = eyes.right.visible ? 1 : 0;
    if (left + right == 0)
        return;
    put(record, frame_record::gazeValid, true);
    putPercent(record, frame_record::gaze, (eyes.left.gaze * left + eyes.right.gaze * right) * (1 / (left + right)));
    put(record, frame_record::focus, kFocus);
    put(record, frame_record::distance_cm, static_cast<float>(eyes.distance_cm));
}

}  // namespace

QLFrameRecord makeFrameRecord(const EyeState &eyes, const FrameImage &image, int cameraWidth, int cameraHeight) {
    QLFrameRecord record{};
    put(&record, frame_record::imagePixels, image.pixels);
    put(&record, frame_record::imageWidth, image.width);
    put(&record, frame_record::imageHeight, image.height);
    putEye(&record, frame_record::leftEye, eyes.left, cameraWidth, cameraHeight);
    putEye(&record, frame_record::rightEye, eyes.right, cameraWidth, cameraHeight);
    putCombined(&record, eyes);
    return record;
}

}  // namespace sim::eyetech
