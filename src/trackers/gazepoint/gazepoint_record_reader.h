#pragma once

#include "core/eye_tracking_sample.h"

#include <QPoint>
#include <QSize>
#include <string_view>

/// Reads the text messages of the GazePoint server. Reentrant.
namespace gazepoint {

enum class Message {
    Record,      ///< `<REC ...`: a gaze sample
    ScreenSize,  ///< `<ACK ID="SCREEN_SIZE" ...`
    Other,       ///< for example acknowledgements and calibration results
};

[[nodiscard]] Message kindOf(std::string_view message);

/// Returns the sample of a record. Missing fields are 0, and so are numbers that are invalid or not finite. The last
/// value of a repeated key is used. `screen` is the size of the tracked screen in pixels, `timestampMs` is the time of
/// arrival.
[[nodiscard]] EyeTrackingSample parseRecord(std::string_view message, QSize screen, qint64 timestampMs);

/// The tracked screen, in pixels.
struct Screen {
    QPoint origin;  ///< of the top-left corner, relative to the primary screen
    QSize size{0, 0};
};

/// Returns the screen in a screen size message. Numbers that are missing or invalid are 0. Older servers do not send
/// the origin.
[[nodiscard]] Screen parseScreen(std::string_view message);

}  // namespace gazepoint
