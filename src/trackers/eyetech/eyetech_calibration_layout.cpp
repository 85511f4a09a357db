#include "trackers/eyetech/eyetech_calibration_layout.h"

#include "core/pixels.h"

#include <algorithm>

namespace layout = eyetech::calibration_layout;

namespace {

constexpr float maxGoodScore = 10.0F;  // a good score is below this
constexpr int cellCount = 5;           // columns and rows of the grid that places the buttons
constexpr QPointF textOffset(10, 10);
/// Larger than any window, but small enough for QPainter.
constexpr int maxPixel = 1000000;

}  // namespace

QPoint layout::targetCentre(QSize area, float x, float y) {
    return {pixels::fromPercent(std::clamp(x, 0.0F, 100.0F), area.width()),
            pixels::fromPercent(std::clamp(y, 0.0F, 100.0F), area.height())};
}

QColor layout::scoreColour(const Target &target) {
    const bool good = target.leftScore.score < maxGoodScore && target.rightScore.score < maxGoodScore;
    return QColor(good ? "#3C0" : "#C30");
}

QPoint layout::gazePoint(QSize area, const Target &target, const quicklink2::QLScore &score) {
    const auto bounded = [](int pixel) { return std::clamp(pixel, -maxPixel, maxPixel); };
    return {bounded(pixels::fromPercent(target.x + score.x, area.width())),
            bounded(pixels::fromPercent(target.y + score.y, area.height()))};
}

QString layout::scoreText(const QString &eye, const quicklink2::QLScore &score) {
    return eye + QString::number(static_cast<double>(score.score), 'f', 2);
}

QPointF layout::textPosition(QPoint gazePoint) {
    return gazePoint + textOffset;
}

layout::Buttons layout::buttons(QSize area) {
    const int column = area.width() / cellCount;
    const int row = area.height() / cellCount;
    const QSize size(column, column / 2);
    const int y = 2 * row + (row - size.height()) / 2;
    return {{{column, y}, size}, {{3 * column, y}, size}};
}

int layout::animationStepCount(int animationMs) {
    return std::max(0, animationMs) / animationStepMs;
}
