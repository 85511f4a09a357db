#pragma once

#include "core/eye_tracking_sample.h"
#include "trackers/asee/sdk/asee_sdk.h"

#include <QSize>
#include <cstdint>

/// Reads the vendor's gaze records. Reentrant.
namespace asee {

/// A position as fractions of a width and height; (0, 0) is the top-left corner.
struct FractionPoint {
    float x;
    float y;
};

/// A view of a gaze record. The record must outlive the view. NaN and infinity are read as 0, because they would
/// propagate through every later calculation.
class GazeRecord {
public:
    /// `record` has at least asee_sdk::gaze_record::sizeBytes bytes.
    explicit GazeRecord(const void *record) : record_(static_cast<const char *>(record)) {}

    // Gaze, in fractions of the calibrated area.
    [[nodiscard]] FractionPoint gaze() const { return pointAt(asee_sdk::gaze_record::gaze); }
    [[nodiscard]] FractionPoint leftGaze() const { return pointAt(asee_sdk::gaze_record::leftGaze); }
    [[nodiscard]] FractionPoint rightGaze() const { return pointAt(asee_sdk::gaze_record::rightGaze); }
    [[nodiscard]] bool isLeftGazeValid() const { return flagAt(asee_sdk::gaze_record::leftGazeFlags); }
    [[nodiscard]] bool isRightGazeValid() const { return flagAt(asee_sdk::gaze_record::rightGazeFlags); }

    // Eye positions, in fractions of the camera image.
    [[nodiscard]] FractionPoint leftEye() const { return pointAt(asee_sdk::gaze_record::leftEye); }
    [[nodiscard]] FractionPoint rightEye() const { return pointAt(asee_sdk::gaze_record::rightEye); }
    [[nodiscard]] bool isLeftEyeSeen() const { return flagAt(asee_sdk::gaze_record::leftEyeFlags); }
    [[nodiscard]] bool isRightEyeSeen() const { return flagAt(asee_sdk::gaze_record::rightEyeFlags); }

    [[nodiscard]] float leftPupil_mm() const { return numberAt(asee_sdk::gaze_record::leftPupil_mm); }
    [[nodiscard]] float rightPupil_mm() const { return numberAt(asee_sdk::gaze_record::rightPupil_mm); }
    [[nodiscard]] bool isLeftTracked() const { return isTracked(asee_sdk::gaze_record::leftStatus); }
    [[nodiscard]] bool isRightTracked() const { return isTracked(asee_sdk::gaze_record::rightStatus); }
    [[nodiscard]] int fixationState() const { return integerAt(asee_sdk::gaze_record::fixationState); }

private:
    [[nodiscard]] std::int32_t integerAt(std::size_t offset) const;
    [[nodiscard]] float numberAt(std::size_t offset) const;
    [[nodiscard]] FractionPoint pointAt(std::size_t offset) const;
    [[nodiscard]] bool flagAt(std::size_t offset) const { return (integerAt(offset) & 1) != 0; }
    [[nodiscard]] bool isTracked(std::size_t offset) const { return integerAt(offset) < 2; }

    const char *record_;
};

/// The last known eye positions, in fractions of the camera image.
struct Eyes {
    enum Seen { Both = 0, LeftOnly = 1, RightOnly = 2 };

    FractionPoint left{-1, -1};  ///< (-1, -1) while the eye is not seen
    FractionPoint right{-1, -1};
    Seen seen = Both;

    /// Returns the mean of the eyes that are seen.
    [[nodiscard]] FractionPoint centre() const;
};

/// Returns the sample of a record. Pixels are relative to the top-left corner of an area of this size. The timestamp is
/// 0: that is intended.
[[nodiscard]] EyeTrackingSample sampleOf(const GazeRecord &record, QSize area);

/// Returns the mean gaze point of the valid eyes, or (0, 0) if neither is valid.
[[nodiscard]] FractionPoint gazeOf(const GazeRecord &record);

/// Returns the eyes of a record, or `previous` if neither eye is seen.
[[nodiscard]] Eyes eyesOf(const GazeRecord &record, const Eyes &previous);

}  // namespace asee
