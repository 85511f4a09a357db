#pragma once

#include "core/eyetracker_interface.h"

#include <QPoint>
#include <QRect>
#include <optional>
#include <vector>

/// Moves the mouse cursor to the place on the desktop that a person looks at.
namespace gaze_cursor {

/// A gaze in the pixels of a tracker.
struct Gaze {
    QPoint pixel;   ///< relative to `origin`
    QPoint origin;  ///< the top-left corner of EyetrackerInterface::pixelArea()
    EyetrackerInterface::PixelUnit unit = EyetrackerInterface::PixelUnit::Desktop;
};

struct Screen {
    QRect geometry;        ///< QScreen::geometry(): its top-left corner in physical pixels, its size in desktop pixels
    qreal pixelRatio = 1;  ///< physical pixels per desktop pixel
};

struct Place {
    std::size_t screen = 0;  ///< index of the screen
    QPoint position;         ///< in desktop pixels, inside of the screen
};

/// Returns the place of the gaze. A gaze beside all screens is moved to the edge of the nearest one. Returns nothing if
/// there is no screen.
[[nodiscard]] std::optional<Place> placeOf(const Gaze &gaze, const std::vector<Screen> &screens);

/// Moves the cursor to the gaze. GUI thread.
void moveTo(const Gaze &gaze);

}  // namespace gaze_cursor
