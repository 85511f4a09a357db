#pragma once

#include <QtGlobal>
#include <cmath>
#include <limits>

/// Conversion of floating-point positions to whole pixels.
namespace pixels {

/// Returns `value` truncated toward zero. Devices may send any value: values beyond the range of the type become its
/// limits, and NaN becomes 0.
[[nodiscard]] inline qint32 truncated(float value) {
    using Limits = std::numeric_limits<qint32>;
    if (value >= static_cast<float>(Limits::max()))
        return Limits::max();
    if (value <= static_cast<float>(Limits::min()))
        return Limits::min();
    return std::isnan(value) ? 0 : static_cast<qint32>(value);
}

/// Returns the pixel at `percent` of an area that is `size` pixels long.
[[nodiscard]] inline qint32 fromPercent(float percent, int size) {
    return truncated(static_cast<float>(size) * percent / 100.0F);
}

}  // namespace pixels
