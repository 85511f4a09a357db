#pragma once

#include "trackers/asee/gaze_reading.h"

#include <QColor>
#include <QPoint>
#include <QRect>
#include <array>

/// Where the calibration screen draws what. Pure functions over its size; lengths are pixels of the widget.
namespace calibration_layout {

/// The nine points, row by row.
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

constexpr float fullRadius = 35;

constexpr QRgb background = 0xff333333;
constexpr QRgb boxColour = qRgb(99, 99, 99);
constexpr QRgb textColour = qRgb(255, 255, 255);
constexpr QRgb eyeColour = qRgb(255, 128, 0);
constexpr QRgb ringColour = qRgb(0, 0, 0);
constexpr QRgb dotColour = qRgb(0, 244, 0);
constexpr QRgb greenGazeColour = qRgb(0, 255, 0);
constexpr QRgb redGazeColour = qRgb(255, 0, 0);

constexpr float dotRadius = 5;
constexpr float eyeRadius = 100;

/// The fixation states whose gaze dot has a colour of its own.
constexpr int greenState = 1;
constexpr int redState = 3;

/// The radius of a target, which shrinks from 35 to 5 as its calibration gets from 0 to 100 percent.
[[nodiscard]] float targetRadius(int percent);

/// The target on its way: that share of what is left of it.
[[nodiscard]] FractionPoint moved(FractionPoint from, FractionPoint to, float share);

/// A place on the screen, in whole pixels.
[[nodiscard]] QPoint pixelOf(FractionPoint place, QSize screen);

/// The box that helps to place the eyes, in the middle of the screen.
[[nodiscard]] QRect eyeBox(QSize screen);

/// The eyes in a picture of 1280 x 1024 pixels in the middle of the screen.
[[nodiscard]] QPoint eyePixel(const gaze_reading::Eyes &eyes, QSize screen);

/// What texts are centred in.
[[nodiscard]] QRect textArea(QSize screen);

/// The radius of the gaze dot.
[[nodiscard]] float gazeRadius(int fixationState);

}  // namespace calibration_layout
