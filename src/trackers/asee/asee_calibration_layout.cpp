#include "trackers/asee/asee_calibration_layout.h"

#include "core/pixels.h"

#include <algorithm>

using asee::FractionPoint;

namespace layout = asee::calibration_layout;

namespace {

constexpr int boxSide = 240;
constexpr QSize cameraImage(1280, 1024);
constexpr float maxShrinkage = 30;
constexpr int sideMargin = 20;

/// Returns the y coordinate of the upper or lower edge of the targets in a row; `side` is -1 or 1.
int edgeOfRow(std::size_t row, int side, QSize screen) {
    const FractionPoint first = layout::points[3 * row];
    return layout::pixelOf(first, screen).y() + side * static_cast<int>(layout::maxTargetRadius);
}

QRect strip(int top, int bottom, QSize screen) {
    return {sideMargin, top, screen.width() - 2 * sideMargin, bottom - top};
}

}  // namespace

float layout::targetRadius(int percent) {
    const auto share = static_cast<float>(std::clamp(percent, 0, 100)) * 0.01F;
    return maxTargetRadius - share * maxShrinkage;
}

FractionPoint layout::moved(FractionPoint from, FractionPoint to, float share) {
    return {from.x + (to.x - from.x) * share, from.y + (to.y - from.y) * share};
}

QPoint layout::pixelOf(FractionPoint position, QSize screen) {
    return {pixels::truncated(static_cast<float>(screen.width()) * position.x),
            pixels::truncated(static_cast<float>(screen.height()) * position.y)};
}

QRect layout::eyeBox(QSize screen) {
    return {(screen.width() - boxSide) / 2, (screen.height() - boxSide) / 2, boxSide, boxSide};
}

QPoint layout::eyePixel(const Eyes &eyes, QSize screen) {
    const QPoint corner((screen.width() - cameraImage.width()) / 2, (screen.height() - cameraImage.height()) / 2);
    const FractionPoint eye = eyes.centre();
    return {pixels::truncated(eye.x * static_cast<float>(cameraImage.width()) + static_cast<float>(corner.x())),
            pixels::truncated(eye.y * static_cast<float>(cameraImage.height()) + static_cast<float>(corner.y()))};
}

QRect layout::textArea(QSize screen) {
    return {0, boxSide, screen.width(), screen.height() - boxSide / 2};
}

QRect layout::hintArea(QSize screen) {
    return strip(edgeOfRow(2, 1, screen), screen.height(), screen);
}

QRect layout::outcomeArea(QSize screen) {
    return strip(edgeOfRow(0, 1, screen), edgeOfRow(1, -1, screen), screen);
}

float layout::gazeRadius(int fixationState) {
    return fixationState == greenState ? 20 : 10;
}
