#include "trackers/asee/asee_calibration_layout.h"

#include "core/pixels.h"

#include <algorithm>

using asee::FractionPoint;

namespace layout = asee::calibration_layout;

namespace {

constexpr int boxSide = 240;
constexpr QSize cameraImage(1280, 1024);
constexpr float maxShrinkage = 30;

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

float layout::gazeRadius(int fixationState) {
    return fixationState == greenState ? 20 : 10;
}
