#include "core/eye_tracking_sample.h"

#include "core/pixels.h"

void EyeTrackingSample::calculatePixels(int width, int height) {
    x_px = pixels::fromPercent(x, width);
    y_px = pixels::fromPercent(y, height);
    l_x_px = pixels::fromPercent(l_x, width);
    l_y_px = pixels::fromPercent(l_y, height);
    r_x_px = pixels::fromPercent(r_x, width);
    r_y_px = pixels::fromPercent(r_y, height);
}

QJsonObject EyeTrackingSample::toJson() const {
    const auto number = [](float value) { return QJsonValue(static_cast<double>(value)); };
    return {
        {"timestamp", timestamp},
        {"valid", valid},
        {"x", number(x)},
        {"y", number(y)},
        {"x_px", x_px},
        {"y_px", y_px},
        {"distance_cm", number(distance_cm)},
        {"focus", number(focus)},
        {"l_x", number(l_x)},
        {"l_y", number(l_y)},
        {"l_x_px", l_x_px},
        {"l_y_px", l_y_px},
        {"l_pupil_mm", number(l_pupil_mm)},
        {"l_pupil_x", l_pupil_x},
        {"l_pupil_y", l_pupil_y},
        {"r_x", number(r_x)},
        {"r_y", number(r_y)},
        {"r_x_px", r_x_px},
        {"r_y_px", r_y_px},
        {"r_pupil_mm", number(r_pupil_mm)},
        {"r_pupil_x", r_pupil_x},
        {"r_pupil_y", r_pupil_y},
    };
}
