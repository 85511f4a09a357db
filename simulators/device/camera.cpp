#include "device/camera.h"

#include "subject/subject.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace sim {

namespace {

constexpr double eyeHalfWidth_mm = 15;
constexpr double lidHalfOpening_mm = 5.5;
constexpr double irisRadius_mm = 5.9;
constexpr double stampHalfWidth_mm = 16;
constexpr double stampHalfHeight_mm = 7;
constexpr int pupilGrey = 16;
constexpr double glintRadius_mm = 0.45;
constexpr Point glintFromPupil_mm{1.4, -1.6};
constexpr int glintGrey = 250;
constexpr int fixedPointOne = 256;  // in the fixed-point numbers of a stamp

/// A Gaussian curve with the standard deviation `width`, sampled `count` times over 0..1.
std::vector<double> gaussian(int count, double middle, double width) {
    std::vector<double> values;
    for (int i = 0; i < count; ++i) {
        const double deviations = ((i + 0.5) / count - middle) / width;
        values.push_back(std::exp(-deviations * deviations / 2));
    }
    return values;
}

std::size_t asSize(int value) {
    return static_cast<std::size_t>(value);
}

/// The opening of the lids at `x_mm` from the middle of the eye, as a fraction of the maximum.
double lidCurve(double x_mm) {
    const double across = x_mm / eyeHalfWidth_mm;
    return std::max(0.0, 1 - across * across);
}

}  // namespace

Camera::Camera(int width, int height, const PhysicalSetup &setup)
    : width_(width),
      height_(height),
      pixelsPerMm_(width * Subject::millimetreInImage(setup.distance_cm)),
      background_(asSize(width) * asSize(height)),
      open_(makeStamp(openEye)),
      closed_(makeStamp(closedEye)) {
    drawBackground();
}

void Camera::paint(const EyeState &eyes, unsigned char *pixels) const {
    std::memcpy(pixels, background_.data(), background_.size());
    drawEye(eyes.left, pixels);
    drawEye(eyes.right, pixels);
}

void Camera::drawBackground() {
    const std::vector<double> faceAcross = gaussian(width_, 0.465, 0.25);
    const std::vector<double> faceDown = gaussian(height_, 0.5, 0.42);
    const std::vector<double> nose = gaussian(width_, 0.465, 0.035);
    std::uint32_t grain = 1;
    auto pixel = background_.begin();
    for (const double down : faceDown) {
        for (std::size_t x = 0; x < faceAcross.size(); ++x) {
            grain = grain * 1664525U + 1013904223U;
            *pixel++ = static_cast<unsigned char>(48 + down * (74 * faceAcross[x] + 16 * nose[x]) + (grain >> 28));
        }
    }
}

Camera::Shade Camera::openEye(double x_mm, double y_mm) {
    const double insideLid_mm = lidHalfOpening_mm * lidCurve(x_mm) - std::abs(y_mm);
    const double radius_mm = std::hypot(x_mm, y_mm);
    double grey = 168 - 3 * radius_mm;
    if (radius_mm < irisRadius_mm)
        grey = 88 + 8 * std::cos(22 * std::atan2(y_mm, x_mm)) - 25 * std::pow(radius_mm / irisRadius_mm, 6);
    if (y_mm < 0 && insideLid_mm < 1)  // the shadow of the upper lid
        grey *= 0.6;
    return {grey, std::clamp(insideLid_mm / 0.6, 0.0, 1.0)};
}

Camera::Shade Camera::closedEye(double x_mm, double y_mm) {
    const double fromLashes_mm = std::abs(y_mm - 3 * lidCurve(x_mm));
    const double fading = std::min(1.0, 5 * lidCurve(x_mm));
    return {45, fading * std::clamp(1.2 - fromLashes_mm, 0.0, 1.0)};
}

Camera::Stamp Camera::makeStamp(Shade (*shade)(double, double)) const {
    Stamp stamp;
    stamp.halfWidth = static_cast<int>(stampHalfWidth_mm * pixelsPerMm_);
    stamp.halfHeight = static_cast<int>(stampHalfHeight_mm * pixelsPerMm_);
    for (int y = -stamp.halfHeight; y < stamp.halfHeight; ++y) {
        for (int x = -stamp.halfWidth; x < stamp.halfWidth; ++x) {
            const Shade at = shade((x + 0.5) / pixelsPerMm_, (y + 0.5) / pixelsPerMm_);
            const auto opacity = static_cast<std::uint16_t>(at.opacity * fixedPointOne);
            stamp.keep.push_back(static_cast<std::uint16_t>(fixedPointOne - opacity));
            stamp.light.push_back(static_cast<std::uint16_t>(at.grey * opacity));
        }
    }
    return stamp;
}

void Camera::drawEye(const Eye &eye, unsigned char *pixels) const {
    const Point centre{eye.pupilCentre.x * width_, eye.pupilCentre.y * height_};
    put(eye.visible ? open_ : closed_, centre, pixels);
    if (!eye.visible)
        return;
    drawDisc(centre, eye.pupil_mm / 2 * pixelsPerMm_, pupilGrey, pixels);
    drawDisc(centre + glintFromPupil_mm * pixelsPerMm_, glintRadius_mm * pixelsPerMm_, glintGrey, pixels);
}

void Camera::put(const Stamp &stamp, Point centre, unsigned char *pixels) const {
    const int left = static_cast<int>(std::lround(centre.x)) - stamp.halfWidth;
    const int top = static_cast<int>(std::lround(centre.y)) - stamp.halfHeight;
    const int first = std::max(0, -left);
    const int count = std::min(2 * stamp.halfWidth, width_ - left) - first;
    for (int y = std::max(0, -top); y < std::min(2 * stamp.halfHeight, height_ - top); ++y) {
        const std::size_t from = asSize(y) * asSize(2 * stamp.halfWidth) + asSize(first);
        unsigned char *row = pixels + asSize(top + y) * asSize(width_) + asSize(left + first);
        for (int x = 0; x < count; ++x) {
            const auto i = from + asSize(x);
            row[x] = static_cast<unsigned char>((row[x] * stamp.keep[i] + stamp.light[i]) >> 8);
        }
    }
}

void Camera::drawDisc(Point centre, double radius, int grey, unsigned char *pixels) const {
    const int left = std::max(0, static_cast<int>(centre.x - radius - 1));
    const int right = std::min(width_ - 1, static_cast<int>(centre.x + radius + 1));
    const int bottom = std::min(height_ - 1, static_cast<int>(centre.y + radius + 1));
    for (int y = std::max(0, static_cast<int>(centre.y - radius - 1)); y <= bottom; ++y) {
        for (int x = left; x <= right; ++x) {
            const double inside = radius - std::hypot(x + 0.5 - centre.x, y + 0.5 - centre.y);
            unsigned char &pixel = pixels[asSize(y) * asSize(width_) + asSize(x)];
            pixel = static_cast<unsigned char>(pixel + (grey - pixel) * std::clamp(inside + 0.5, 0.0, 1.0));
        }
    }
}

}  // namespace sim
