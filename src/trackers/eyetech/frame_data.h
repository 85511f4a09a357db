#pragma once

#include "trackers/eyetech/quicklink2.h"

#include <QImage>
#include <QMetaType>

/// A frame of an EyeTech tracker: the vendor's record, and a copy of the camera image that it points at.
///
/// The image in the record belongs to the library until the next call for a frame; a frame that travels to the views
/// is painted later than that. So the image is copied at once, where the frame is fetched, and nobody else follows
/// the record's pointer. A plain value: copies share the image. All zero, without an image, before the first frame.
///
/// Numbers of the record that are none read as 0.
struct QLFrameData {
    /// Of the image, in each direction; a record that claims more has none. No camera of the vendor comes near.
    static constexpr int longestSide = 4096;

    struct Eye {
        bool found;
        float pupil_mm;  ///< diameter
        float pupilX;    ///< centre in the camera image, pixels
        float pupilY;
        float x;  ///< gaze, percent
        float y;
    };

    QLFrameRecord record{};
    QImage image;  ///< 8-bit grey; null without a usable one

    /// Copies the record's image, while the library keeps it.
    void copyImage();
    /// Whether the record claims an image that could not be copied.
    [[nodiscard]] bool lacksImage() const;

    [[nodiscard]] Eye leftEye() const { return eye(frame_record::leftEye); }
    [[nodiscard]] Eye rightEye() const { return eye(frame_record::rightEye); }
    [[nodiscard]] bool gazeValid() const { return flag(frame_record::gazeValid); }
    [[nodiscard]] float x() const { return number(frame_record::gaze); }  ///< combined gaze, percent
    [[nodiscard]] float y() const { return number(frame_record::gaze + 4); }
    [[nodiscard]] float focus() const { return number(frame_record::focus); }
    [[nodiscard]] float distance_cm() const { return number(frame_record::distance_cm); }

private:
    [[nodiscard]] bool flag(int offset) const { return record.bytes[offset] != 0; }
    [[nodiscard]] float number(int offset) const;
    [[nodiscard]] Eye eye(int offset) const;
};

Q_DECLARE_METATYPE(QLFrameData)
