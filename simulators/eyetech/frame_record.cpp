#include "eyetech/frame_record.h"

#include <cstring>

namespace sim::eyetech {

namespace {

namespace at = quicklink2::frame_record;

constexpr float focus = 0.8F;

/// Writes the fields of a record.
class Writer {
public:
    template <typename T>
    void put(int offset, T value) {
        std::memcpy(record_.bytes + offset, &value, sizeof value);
    }

    void putPoint(int offset, Point point, double width, double height) {
        put(offset, static_cast<float>(point.x * width));
        put(offset + 4, static_cast<float>(point.y * height));
    }

    void putPercent(int offset, Point point) { putPoint(offset, point, 100, 100); }

    void putEye(int block, const Eye &eye, environment::Size cameraSize) {
        if (!eye.visible)
            return;
        put(block + at::eyeFound, true);
        put(block + at::eyePupil_mm, static_cast<float>(eye.pupil_mm));
        putPoint(block + at::eyePupilCentre, eye.pupilCentre, cameraSize.width, cameraSize.height);
        putPercent(block + at::eyeGaze, eye.gaze);
    }

    /// Writes the mean gaze of the visible eyes.
    void putCombined(const EyeState &eyes) {
        const double left = eyes.left.visible ? 1 : 0;
        const double right = eyes.right.visible ? 1 : 0;
        if (left + right == 0)
            return;
        put(at::gazeValid, true);
        putPercent(at::gaze, (eyes.left.gaze * left + eyes.right.gaze * right) * (1 / (left + right)));
        put(at::focus, focus);
        put(at::distance_cm, static_cast<float>(eyes.distance_cm));
    }

    [[nodiscard]] const quicklink2::QLFrameRecord &record() const { return record_; }

private:
    quicklink2::QLFrameRecord record_{};
};

}  // namespace

quicklink2::QLFrameRecord makeFrameRecord(const EyeState &eyes, const FrameImage &image, environment::Size cameraSize) {
    Writer writer;
    writer.put(at::imagePixels, image.pixels);
    writer.put(at::imageWidth, image.width);
    writer.put(at::imageHeight, image.height);
    writer.putEye(at::leftEye, eyes.left, cameraSize);
    writer.putEye(at::rightEye, eyes.right, cameraSize);
    writer.putCombined(eyes);
    return writer.record();
}

}  // namespace sim::eyetech
