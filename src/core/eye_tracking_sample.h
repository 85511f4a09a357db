#pragma once

#include <QJsonObject>
#include <QList>
#include <QMetaType>

/// One gaze measurement, in the form in which every tracker reports it.
///
/// A plain value: copied whole, no pointers. Positions stand twice, as percent of the calibrated area (0 =
/// left or top edge, 100 = right or bottom edge; gaze beyond the edges leaves that range) and as whole pixels
/// from the area's top-left corner. `l_` and `r_` are the subject's left and right eye; fields without a
/// prefix are the combined gaze.
///
/// The record is copied as a block through queued signals: the order of the fields stays as it is.
struct EyeTrackingSample {
    qint64 timestamp = 0;  ///< ms, as a rule since the Unix epoch; only differences of it are used

    bool l_valid = false;  ///< left eye seen
    bool r_valid = false;  ///< right eye seen
    bool valid = false;    ///< combined gaze usable

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

    float focus = 0;        ///< the device's own quality figure
    float distance_cm = 0;  ///< from the eyes to the tracker, cm

    /// Fills the six gaze pixel fields from the percent fields, for an area of this size in pixels. Single
    /// precision, truncated toward zero, not clamped to the area.
    void calculatePixels(int width, int height);

    /// Everything but `l_valid` and `r_valid`, under the fields' names. Floats are widened to double, not
    /// rounded.
    [[nodiscard]] QJsonObject toJson() const;
};

Q_DECLARE_TYPEINFO(EyeTrackingSample, Q_MOVABLE_TYPE);
Q_DECLARE_METATYPE(EyeTrackingSample)
