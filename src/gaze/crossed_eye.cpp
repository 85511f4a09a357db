#include "gaze/crossed_eye.h"

#include <cmath>

namespace {

// Near the diagonal of the screen both orders fit, so only a clear difference decides.
constexpr double clearFactor = 2;

double cityBlockDistance(ScreenPoint a, ScreenPoint b) {
    return std::abs(a.x - b.x) + std::abs(a.y - b.y);
}

}  // namespace

void CrossedEye::add(ScreenPoint combined, ScreenPoint right) {
    const double asDelivered = cityBlockDistance(right, combined);
    const double exchanged = cityBlockDistance({right.y, right.x}, combined);
    if (!std::isfinite(asDelivered + exchanged))
        return;
    ++sampleCount_;
    asDelivered_ += asDelivered;
    exchanged_ += exchanged;
    if (sampleCount_ < minSampleCount)
        return;
    if (exchanged_ * clearFactor < asDelivered_)
        crossed_ = true;
    else if (asDelivered_ * clearFactor < exchanged_)
        crossed_ = false;
}
