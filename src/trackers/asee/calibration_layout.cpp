#include "trackers/asee/calibration_layout.h"

#include "core/pixels.h"

#include <algorithm>

namespace {

constexpr int boxSide = 240;
constexpr QSize cameraImage(1280, 1024);
constexpr float shrinking = 30;

}  // namespace

float calibration_layout::targetRadius(int percent) {
    const auto share = static_cast<float>(std::clamp(percent, 0, 100)) * 0.01F;
    return fullRadius - share * shrinking;
}

FractionPoint calibration_layout::moved(FractionPoint from, FractionPoint to, float share) {
    return {from.x + (to.x - from.x) * share, from.y + (to.y - from.y) * share};
}

QPoint calibration_layout::pixelOf(FractionPoint place, QSize screen) {
    return {truncatedToPixel(static_cast<float>(screen.width()) * place.x),
            truncatedToPixel(static_cast<float>(screen.height()) * place.y)};
}

QRect calibration_layout::eyeBox(QSize screen) {
    return {(screen.width() - boxSide) / 2, (screen.height() - boxSide) / 2, boxSide, boxSide};
}

QPoint calibration_layout::eyePixel(const gaze_reading::Eyes &eyes, QSize screen) {
    const QPoint corner((screen.width() - cameraImage.width()) / 2, (screen.height() - cameraImage.height()) / 2);
    const FractionPoint eye = eyes.centre();
    return {truncatedToPixel(eye.x * static_cast<float>(cameraImage.width()) + static_cast<float>(corner.x())),
            truncatedToPixel(eye.y * static_cast<float>(cameraImage.height()) + static_cast<float>(corner.y()))};
}

QRect calibration_layout::textArea(QSize screen) {
    return {0, boxSide, screen.width(), screen.height() - boxSide / 2};
}

float calibration_layout::gazeRadius(int fixationState) {
    return fixationState == greenState ? 20 : 10;
}
