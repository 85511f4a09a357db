#pragma once

#include "trackers/asee/asee_record_reader.h"

#include <QColor>
#include <QPoint>
#include <QRect>
#include <array>

/// The geometry and colours of the calibration screen. Lengths are in pixels of the widget. Reentrant.
namespace asee::calibration_layout {

/// The nine targets, row by row.
constexpr std::array<FractionPoint, 9> points{{
    {0.15F, 0.15F},
    {0.5F, 0.15F},
    {0.85F, 0.15F},
    {0.15F, 0.5F},
    {0.5F, 0.5F},
    {0.85F, 0.5F},
    {0.15F, 0.85F},
    {0.5F, 0.85F},
    {0.85F, 0.85F},
}};

constexpr QRgb background = 0xff333333;
constexpr QRgb boxColour = qRgb(99, 99, 99);
constexpr QRgb textColour = qRgb(255, 255, 255);
constexpr QRgb eyeColour = qRgb(255, 128, 0);
constexpr QRgb ringColour = qRgb(0, 0, 0);
constexpr QRgb dotColour = qRgb(0, 244, 0);
constexpr QRgb greenGazeColour = qRgb(0, 255, 0);
constexpr QRgb redGazeColour = qRgb(255, 0, 0);

constexpr float maxTargetRadius = 35;
constexpr float dotRadius = 5;
constexpr float eyeRadius = 100;

/// The fixation states in which the gaze dot is green or red.
constexpr int greenState = 1;
constexpr int redState = 3;

/// Returns the radius of a target: 35 at a progress of 0 %, and 5 at 100 %.
[[nodiscard]] float targetRadius(int percent);

/// Returns the point after `share` of the line from `from` to `to`.
[[nodiscard]] FractionPoint moved(FractionPoint from, FractionPoint to, float share);

/// Returns the pixel of a position, truncated.
[[nodiscard]] QPoint pixelOf(FractionPoint position, QSize screen);

/// Returns the box in the centre of the screen in which the user places the eyes.
[[nodiscard]] QRect eyeBox(QSize screen);

/// Returns the centre of the eyes. The camera image has 1280 x 1024 pixels and is in the centre of the screen.
[[nodiscard]] QPoint eyePixel(const Eyes &eyes, QSize screen);

/// Returns the rectangle in which the requests to press a key are centred.
[[nodiscard]] QRect textArea(QSize screen);

/// Returns the strip below the last row of targets: what to do, and the number of the current point.
[[nodiscard]] QRect hintArea(QSize screen);

/// Returns the strip between the first and the second row of targets: how the calibration ended.
[[nodiscard]] QRect outcomeArea(QSize screen);

[[nodiscard]] float gazeRadius(int fixationState);

}  // namespace asee::calibration_layout
