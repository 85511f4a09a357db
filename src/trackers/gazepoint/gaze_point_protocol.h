#pragma once

#include "core/eye_tracking_sample.h"

#include <QSize>
#include <string_view>

/// What the GazePoint server sends, read from its text. Pure functions without a socket; reentrant.
namespace gazepoint {

enum class Message {
    Record,      ///< `<REC ...`: one gaze measurement
    ScreenSize,  ///< `<ACK ID="SCREEN_SIZE" ...`
    Other,       ///< acknowledgements, calibration results, anything unknown
};

[[nodiscard]] Message kindOf(std::string_view message);

/// The sample that a record holds; fields that it lacks stay zero, and so do numbers that do not parse or are
/// not finite. When a key occurs twice the later value holds. `screen` is the tracked screen in pixels,
/// `timestampMs` the time of arrival.
[[nodiscard]] EyeTrackingSample parseRecord(std::string_view message, QSize screen, qint64 timestampMs);

/// The size that a screen size answer holds; 0 for a side that is missing or does not parse.
[[nodiscard]] QSize parseScreenSize(std::string_view message);

}  // namespace gazepoint
