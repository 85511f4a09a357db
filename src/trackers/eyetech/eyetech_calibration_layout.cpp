#include "trackers/eyetech/eyetech_calibration_layout.h"

#include "core/pixels.h"

#include <algorithm>

namespace layout = eyetech::calibration_layout;

namespace {

constexpr float maxGoodScore = 10.0F;  // a good score is below this
constexpr int cellCount = 5;           // columns and rows of the grid that places the buttons
constexpr QPoint textOffset(10, 10);
/// Limits the time if many texts are at the same position because a target was repeated many times.
constexpr int maxMoveCount = 10;
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

QPoint layout::textPosition(QPoint gazePoint) {
    return gazePoint + textOffset;
}

std::vector<QRect> layout::separated(QSize area, std::vector<QRect> boxes, const std::vector<QRect> &obstacles) {
    std::vector<QRect> placed = obstacles;
    for (QRect &box : boxes) {
        const int maxTop = std::max(0, area.height() - box.height());
        box.moveLeft(std::clamp(box.left(), 0, std::max(0, area.width() - box.width())));
        box.moveTop(std::clamp(box.top(), 0, maxTop));
        const auto covered = [&] {
            return std::find_if(placed.begin(), placed.end(),
                                [&](const QRect &other) { return other.intersects(box); });
        };
        auto other = covered();
        for (int i = 0; i < maxMoveCount && other != placed.end(); ++i) {
            const int below = other->bottom() + 1;
            box.moveTop(below <= maxTop ? below : std::max(0, other->top() - box.height()));
            other = covered();
        }
        placed.push_back(box);
    }
    return boxes;
}

QRect layout::targetBox(QPoint centre) {
    return {centre - QPoint(targetDiameter, targetDiameter) / 2, QSize(targetDiameter, targetDiameter)};
}

QRect layout::messageBox(QSize area, QPoint target) {
    const int height = area.height() / 3;
    const bool isTargetAbove = target.y() < area.height() / 2;
    return {0, isTargetAbove ? area.height() - height : 0, area.width(), height};
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
