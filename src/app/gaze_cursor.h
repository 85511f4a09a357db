#pragma once

#include "core/eyetracker_interface.h"

#include <QPoint>
#include <QRect>
#include <optional>
#include <vector>

/// Moves the mouse cursor to the position on the desktop at which a person looks.
namespace gaze_cursor {

/// A gaze in the tracker's pixels.
struct Gaze {
    QPoint pixel;   ///< relative to `origin`
    QPoint origin;  ///< the top-left corner of EyetrackerInterface::pixelArea()
    EyetrackerInterface::PixelUnit unit = EyetrackerInterface::PixelUnit::Desktop;
};

/// A screen of the desktop.
struct Screen {
    QRect geometry;        ///< QScreen::geometry(): its top-left corner in physical pixels, its size in desktop pixels
    qreal pixelRatio = 1;  ///< physical pixels per desktop pixel
};

/// A position on one of the screens.
struct Place {
    std::size_t screen = 0;  ///< index of the screen
    QPoint position;         ///< in desktop pixels, inside the screen
};

/// Returns the position of the gaze. A gaze outside all screens is moved to the edge of the nearest screen. Returns
/// std::nullopt if there is no screen. Any thread.
[[nodiscard]] std::optional<Place> placeOf(const Gaze &gaze, const std::vector<Screen> &screens);

/// Moves the cursor to the gaze. GUI thread.
void moveTo(const Gaze &gaze);

}  // namespace gaze_cursor
