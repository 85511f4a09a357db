#include "trackers/eyetech/calibration_picture.h"

#include "core/pixels.h"

#include <algorithm>

namespace {

constexpr float goodScore = 10.0F;  // below
constexpr int parts = 5;            // of the area's width and height, for the buttons
constexpr QPointF textOffset(10, 10);
/// Beyond every window, and still far from the limits of what painting calculates with.
constexpr int farthestPixel = 1000000;

}  // namespace

QPoint calibration_picture::targetCentre(QSize area, float x, float y) {
    return {percentToPixel(std::clamp(x, 0.0F, 100.0F), area.width()),
            percentToPixel(std::clamp(y, 0.0F, 100.0F), area.height())};
}

QColor calibration_picture::scoreColour(const Target &target) {
    const bool good = target.leftScore.score < goodScore && target.rightScore.score < goodScore;
    return QColor(good ? "#3C0" : "#C30");
}

QPoint calibration_picture::gazePoint(QSize area, const Target &target, const QLScore &score) {
    const auto bounded = [](int pixel) { return std::clamp(pixel, -farthestPixel, farthestPixel); };
    return {bounded(percentToPixel(target.x + score.x, area.width())),
            bounded(percentToPixel(target.y + score.y, area.height()))};
}

QString calibration_picture::scoreText(const QString &eye, const QLScore &score) {
    return eye + QString::number(static_cast<double>(score.score), 'f', 2);
}

QPointF calibration_picture::textPosition(QPoint gazePoint) {
    return gazePoint + textOffset;
}

calibration_picture::Buttons calibration_picture::buttons(QSize area) {
    const int column = area.width() / parts;
    const int row = area.height() / parts;
    const QSize size(column, column / 2);
    const int y = 2 * row + (row - size.height()) / 2;
    return {{{column, y}, size}, {{3 * column, y}, size}};
}

int calibration_picture::animationSteps(int animationMs) {
    return std::max(0, animationMs) / animationStepMs;
}
