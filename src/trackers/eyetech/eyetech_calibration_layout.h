#pragma once

#include "trackers/eyetech/sdk/quicklink2.h"

#include <QColor>
#include <QPoint>
#include <QRect>
#include <QString>
#include <vector>

/// The geometry, colours and texts of the calibration screen. Pixels are relative to its window, which has the size of
/// the calibrated area. Reentrant.
namespace eyetech::calibration_layout {

constexpr int targetDiameter = 50;
constexpr int outlineWidth = 16;
constexpr int targetRadius = targetDiameter / 2 - outlineWidth / 2;
constexpr int centreRadius = 3;  ///< of the dot in the centre of a target
constexpr int gazeRadius = 5;    ///< of the dot at the measured gaze of an eye

/// One measurement of a target.
struct Target {
    QPoint position;
    float x = 0;  ///< percent
    float y = 0;
    quicklink2::QLScore leftScore{};
    quicklink2::QLScore rightScore{};
};

/// Returns the centre of a target. `x` and `y` are percent of the area, limited to 0..100.
[[nodiscard]] QPoint targetCentre(QSize area, float x, float y);

/// Returns green if both eyes have a good score, otherwise red.
[[nodiscard]] QColor scoreColour(const Target &target);
/// Returns the measured gaze of an eye. It may be outside the window, but is limited to pixels that QPainter can
/// handle.
[[nodiscard]] QPoint gazePoint(QSize area, const Target &target, const quicklink2::QLScore &score);
[[nodiscard]] QString scoreText(const QString &eye, const quicklink2::QLScore &score);
/// Returns the start of the text at a gaze point, on its baseline.
[[nodiscard]] QPoint textPosition(QPoint gazePoint);
/// Returns the boxes of texts, moved into the window. A box that would cover an obstacle or an earlier box is moved
/// below it or, at the bottom of the window, above it.
[[nodiscard]] std::vector<QRect> separated(QSize area, std::vector<QRect> boxes, const std::vector<QRect> &obstacles);
/// Returns the bounds of a target.
[[nodiscard]] QRect targetBox(QPoint centre);
constexpr int textPixels = 16;  ///< font size of scores

/// Returns the part of the window for a message, which does not cover the target.
[[nodiscard]] QRect messageBox(QSize area, QPoint target);
constexpr int messagePixels = 24;  ///< font size of messages

struct Buttons {
    QRect save;
    QRect recalibrate;
};
[[nodiscard]] Buttons buttons(QSize area);

/// Returns the number of steps in which a target moves to its next position.
[[nodiscard]] int animationStepCount(int animationMs);
constexpr int animationStepMs = 30;

}  // namespace eyetech::calibration_layout
