#pragma once

#include <QtGlobal>
#include <limits>

/// A pixel coordinate truncated toward zero. What a device sends may be beyond every screen or no number at
/// all: such values end at the limits of the type, or at 0.
[[nodiscard]] inline qint32 truncatedToPixel(float value) {
    using Limits = std::numeric_limits<qint32>;
    if (value >= static_cast<float>(Limits::max()))
        return Limits::max();
    if (value <= static_cast<float>(Limits::min()))
        return Limits::min();
    return value == value ? static_cast<qint32>(value) : 0;
}

/// The pixel at `percent` of an area `size` pixels long.
[[nodiscard]] inline qint32 percentToPixel(float percent, int size) {
    return truncatedToPixel(static_cast<float>(size) * percent / 100.0F);
}
