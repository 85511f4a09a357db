#pragma once

#include "trackers/eyetech/quicklink2.h"

#include <QColor>
#include <QPoint>
#include <QRect>
#include <QString>

/// What the calibration screen shows where, in pixels of its window, whose size is that of the calibrated area. Pure
/// functions.
namespace calibration_picture {

constexpr int targetDiameter = 50;
constexpr int outlineWidth = 16;
constexpr int targetRadius = targetDiameter / 2 - outlineWidth / 2;
constexpr int centreRadius = 3;  ///< of the dot in a target's middle
constexpr int gazeRadius = 5;    ///< of the dots where the eyes were seen to look

/// One pass over a target.
struct Target {
    QPoint position;
    float x = 0;  ///< percent
    float y = 0;
    QLScore leftScore{};
    QLScore rightScore{};
};

/// Where a target stands that the device wants at so much percent; at the edge when that is beyond it.
[[nodiscard]] QPoint targetCentre(QSize area, float x, float y);

/// The colour of a target: green when both eyes hit it well, else red.
[[nodiscard]] QColor scoreColour(const Target &target);
/// Where the eye of that score was seen to look, far beyond the window at most.
[[nodiscard]] QPoint gazePoint(QSize area, const Target &target, const QLScore &score);
[[nodiscard]] QString scoreText(const QString &eye, const QLScore &score);
/// Where the text of a gaze point begins.
[[nodiscard]] QPointF textPosition(QPoint gazePoint);

struct Buttons {
    QRect save;
    QRect recalibrate;
};
[[nodiscard]] Buttons buttons(QSize area);

/// How many steps a target takes to its next place.
[[nodiscard]] int animationSteps(int animationMs);
constexpr int animationStepMs = 30;

}  // namespace calibration_picture
