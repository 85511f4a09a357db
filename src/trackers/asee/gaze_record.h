#pragma once

#include "trackers/asee/asee_sdk.h"

#include <cmath>
#include <cstdint>
#include <cstring>

/// A place in fractions of whatever it is a place on; 0, 0 is the top-left corner.
struct FractionPoint {
    float x;
    float y;
};

/// Reads the fields of a gaze record where it lies. A view: the record must be there as long as it is used.
///
/// A number that is none, which no calculation would get rid of again, reads as 0.
class GazeRecord {
public:
    /// `record` has at least asee::gaze_record::bytes bytes.
    explicit GazeRecord(const void *record) : record_(static_cast<const char *>(record)) {}

    [[nodiscard]] FractionPoint gaze() const { return pointAt(asee::gaze_record::gaze); }
    [[nodiscard]] FractionPoint leftGaze() const { return pointAt(asee::gaze_record::leftGaze); }
    [[nodiscard]] FractionPoint rightGaze() const { return pointAt(asee::gaze_record::rightGaze); }
    [[nodiscard]] bool isLeftGazeValid() const { return flagAt(asee::gaze_record::leftGazeFlags); }
    [[nodiscard]] bool isRightGazeValid() const { return flagAt(asee::gaze_record::rightGazeFlags); }

    /// The eye's place in the camera image.
    [[nodiscard]] FractionPoint leftEye() const { return pointAt(asee::gaze_record::leftEye); }
    [[nodiscard]] FractionPoint rightEye() const { return pointAt(asee::gaze_record::rightEye); }
    [[nodiscard]] bool isLeftEyeSeen() const { return flagAt(asee::gaze_record::leftEyeFlags); }
    [[nodiscard]] bool isRightEyeSeen() const { return flagAt(asee::gaze_record::rightEyeFlags); }

    [[nodiscard]] float leftPupil_mm() const { return numberAt(asee::gaze_record::leftPupil_mm); }
    [[nodiscard]] float rightPupil_mm() const { return numberAt(asee::gaze_record::rightPupil_mm); }

    [[nodiscard]] bool isLeftTracked() const { return isTracked(asee::gaze_record::leftStatus); }
    [[nodiscard]] bool isRightTracked() const { return isTracked(asee::gaze_record::rightStatus); }
    [[nodiscard]] int fixationState() const { return at<std::int32_t>(asee::gaze_record::fixationState); }

private:
    template <typename T>
    [[nodiscard]] T at(std::size_t offset) const {
        T value;
        std::memcpy(&value, record_ + offset, sizeof value);
        return value;
    }
    [[nodiscard]] float numberAt(std::size_t offset) const {
        const auto value = at<float>(offset);
        return std::isfinite(value) ? value : 0.0F;
    }
    [[nodiscard]] FractionPoint pointAt(std::size_t offset) const {
        return {numberAt(offset), numberAt(offset + sizeof(float))};
    }
    [[nodiscard]] bool flagAt(std::size_t offset) const { return (at<std::int32_t>(offset) & 1) != 0; }
    [[nodiscard]] bool isTracked(std::size_t offset) const { return at<std::int32_t>(offset) < 2; }

    const char *record_;
};
