#pragma once

#include "core/eye_tracking_sample.h"
#include "trackers/eyetech/sdk/quicklink2.h"

#include <QImage>
#include <QMetaType>
#include <QSize>

/// A frame of an EyeTech tracker: the vendor's record, and a copy of its camera image. All fields are zero, and the
/// image is null, before the first frame.
///
/// The library reuses the memory of the image for the next frame, and may free it when a device is stopped. Code that
/// fetches a frame must call copyImage() or removeImage() at once, and other code must not use the record's image
/// pointer. Copies of a frame share the image. NaN and infinity are read as 0.
struct QLFrameData {
    /// A wider or higher image is invalid. The vendor's cameras have much smaller images.
    static constexpr int maxImageSide = 4096;

    struct Eye {
        bool found;
        float pupil_mm;  ///< diameter
        float pupilX;    ///< centre, in pixels of the camera image
        float pupilY;
        float x;  ///< gaze, percent
        float y;
    };

    quicklink2::QLFrameRecord record{};
    QImage image;  ///< 8-bit grey; null if the record has no valid image

    /// Copies the image of the record. Called before the library's next frame.
    void copyImage();
    /// Makes this a frame without an image.
    void removeImage();
    /// Returns whether the record has an image that is invalid.
    [[nodiscard]] bool hasInvalidImage() const;

    [[nodiscard]] Eye leftEye() const { return eye(quicklink2::frame_record::leftEye); }
    [[nodiscard]] Eye rightEye() const { return eye(quicklink2::frame_record::rightEye); }
    [[nodiscard]] bool gazeValid() const { return flag(quicklink2::frame_record::gazeValid); }
    [[nodiscard]] float x() const { return number(quicklink2::frame_record::gaze); }  ///< combined gaze, percent
    [[nodiscard]] float y() const { return number(quicklink2::frame_record::gaze + 4); }
    [[nodiscard]] float focus() const { return number(quicklink2::frame_record::focus); }
    [[nodiscard]] float distance_cm() const { return number(quicklink2::frame_record::distance_cm); }

private:
    [[nodiscard]] bool flag(int offset) const { return record.bytes[offset] != 0; }
    [[nodiscard]] float number(int offset) const;
    [[nodiscard]] Eye eye(int offset) const;
};

Q_DECLARE_METATYPE(QLFrameData)

namespace eyetech {

/// Returns the sample of a frame. Pixels are relative to the top-left corner of an area of this size. Reentrant.
[[nodiscard]] EyeTrackingSample sampleOf(const QLFrameData &frame, QSize area, qint64 timestampMs);

}  // namespace eyetech
