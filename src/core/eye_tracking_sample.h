#pragma once

#include <QJsonObject>
#include <QList>
#include <QMetaType>

/// One gaze measurement. All trackers report this type.
///
/// Positions are given twice: as percent of the calibrated area (0 is the left or top edge, 100 the right or bottom
/// edge; gaze outside of the area is beyond that range), and as whole pixels from the area's top-left corner. `l_` and
/// `r_` are the subject's left and right eye. Fields without a prefix are the combined gaze.
///
/// A plain value type without pointers. Do not change the order of the fields.
struct EyeTrackingSample {
    qint64 timestamp = 0;  ///< ms, usually since the Unix epoch; only differences are meaningful

    bool l_valid = false;  ///< left eye detected
    bool r_valid = false;  ///< right eye detected
    bool valid = false;    ///< combined gaze is usable

    float x = 0;  ///< percent
    float l_x = 0;
    float r_x = 0;
    float y = 0;
    float l_y = 0;
    float r_y = 0;

    qint32 x_px = 0;
    qint32 y_px = 0;
    qint32 l_x_px = 0;
    qint32 l_y_px = 0;
    qint32 r_x_px = 0;
    qint32 r_y_px = 0;

    qint32 l_pupil_x = 0;  ///< pupil centre in the camera image, pixels
    qint32 l_pupil_y = 0;
    qint32 r_pupil_x = 0;
    qint32 r_pupil_y = 0;

    float l_pupil_mm = 0;  ///< pupil diameter, mm
    float r_pupil_mm = 0;

    float focus = 0;        ///< quality figure of the device, without a unit
    float distance_cm = 0;  ///< from the eyes to the tracker

    /// Calculates the six gaze pixel fields from the percent fields, for an area of this size in pixels. Results are
    /// truncated toward zero and not clamped to the area.
    void calculatePixels(int width, int height);

    /// Returns all fields except `l_valid` and `r_valid`, under their names. Floats are converted to double without
    /// rounding.
    [[nodiscard]] QJsonObject toJson() const;
};

Q_DECLARE_TYPEINFO(EyeTrackingSample, Q_MOVABLE_TYPE);
Q_DECLARE_METATYPE(EyeTrackingSample)
