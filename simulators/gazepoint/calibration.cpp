#include "gazepoint/calibration.h"

#include "gazepoint/messages.h"

#include <cmath>

namespace sim::gazepoint {

namespace {

const std::vector<Point> defaultPoints{{0.5, 0.5}, {0.85, 0.15}, {0.85, 0.85}, {0.15, 0.85}, {0.15, 0.15}};
constexpr double defaultDelay_s = 0.5;
constexpr double defaultTimeout_s = 1.25;
// The time that the server needs to calculate the result of a point. With the defaults, a point takes 2 s in total.
constexpr double computing_s = 0.25;
constexpr int pointDecimals = 4;
constexpr int resultDecimals = 5;

QVector<Attribute> gazeAttributes(char eye, const QByteArray &number, const Gaze &gaze) {
    return {{eye + ("X" + number), decimals(gaze.point.x, resultDecimals)},
            {eye + ("Y" + number), decimals(gaze.point.y, resultDecimals)},
            {eye + ("V" + number), gaze.valid ? "1" : "0"}};
}

}  // namespace

void Calibration::EyeMean::add(const Eye &eye) {
    ++sampleCount;
    if (!eye.visible)
        return;
    ++seenCount;
    sum = sum + eye.gaze;
}

/// Returns an invalid gaze if the eye was lost for more than half of the time.
Gaze Calibration::EyeMean::gaze() const {
    if (seenCount == 0 || seenCount * 2 < sampleCount)
        return {};
    return {sum * (1.0 / seenCount), true};
}

Calibration::Calibration() : points_(defaultPoints), delay_s_(defaultDelay_s), timeout_s_(defaultTimeout_s) {}

void Calibration::clearPoints() {
    points_.clear();
    stop();
}

void Calibration::resetPoints() {
    points_ = defaultPoints;
    stop();
}

void Calibration::addPoint(Point point) {
    if (points_.size() < maxPointCount)
        points_.push_back(point);
}

void Calibration::start() {
    running_ = !points_.empty();
    pointShown_ = false;
    measured_.clear();
}

void Calibration::stop() {
    running_ = false;
}

std::vector<QByteArray> Calibration::advance(double now_s, const EyeState &eyes) {
    std::vector<QByteArray> messages;
    if (!running_)
        return messages;
    if (pointShown_ && now_s >= pointEnd_s()) {
        messages.push_back(pointMessage("CALIB_RESULT_PT"));
        pointShown_ = false;
        if (measured_.size() >= points_.size()) {
            messages.push_back(finish());
            return messages;
        }
    }
    if (!pointShown_) {
        showPoint(now_s);
        messages.push_back(pointMessage("CALIB_START_PT"));
    }
    measure(now_s, eyes);
    return messages;
}

std::optional<Point> Calibration::target() const {
    if (!running_ || !pointShown_)
        return std::nullopt;
    return measured_.back().target;
}

Calibration::Summary Calibration::summary(double width_px, double height_px) const {
    Summary summary;
    for (const Measurement &point : result_) {
        const Gaze left = point.left.gaze(), right = point.right.gaze();
        if (!left.valid || !right.valid)
            continue;
        const Point error = (left.point + right.point) * 0.5 - point.target;
        summary.averageError_px += std::hypot(error.x * width_px, error.y * height_px);
        ++summary.validPointCount;
    }
    if (summary.validPointCount > 0)
        summary.averageError_px /= summary.validPointCount;
    return summary;
}

void Calibration::showPoint(double now_s) {
    pointShown_ = true;
    pointStart_s_ = now_s;
    measured_.push_back({points_[measured_.size()], {}, {}});
}

void Calibration::measure(double now_s, const EyeState &eyes) {
    const double shown_s = now_s - pointStart_s_;
    if (shown_s < delay_s_ || shown_s > delay_s_ + timeout_s_)
        return;
    measured_.back().left.add(eyes.left);
    measured_.back().right.add(eyes.right);
}

QByteArray Calibration::finish() {
    running_ = false;
    result_ = measured_;
    return resultMessage();
}

double Calibration::pointEnd_s() const {
    return pointStart_s_ + delay_s_ + timeout_s_ + computing_s;
}

QByteArray Calibration::pointMessage(const char *id) const {
    const Point target = measured_.back().target;
    return message("CAL", id,
                   {{"PT", QByteArray::number(static_cast<qulonglong>(measured_.size()))},
                    {"CALX", decimals(target.x, pointDecimals)},
                    {"CALY", decimals(target.y, pointDecimals)}});
}

QByteArray Calibration::resultMessage() const {
    QVector<Attribute> attributes;
    int number = 0;
    for (const Measurement &point : result_) {
        const QByteArray suffix = QByteArray::number(++number);
        attributes << Attribute{"CALX" + suffix, decimals(point.target.x, resultDecimals)}
                   << Attribute{"CALY" + suffix, decimals(point.target.y, resultDecimals)}
                   << gazeAttributes('L', suffix, point.left.gaze()) << gazeAttributes('R', suffix, point.right.gaze());
    }
    return message("CAL", "CALIB_RESULT", attributes);
}

}  // namespace sim::gazepoint
