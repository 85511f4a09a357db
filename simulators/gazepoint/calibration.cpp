#include "gazepoint/calibration.h"

#include "gazepoint/messages.h"

#include <cmath>

namespace sim::gazepoint {

namespace {

const std::vector<Point> kDefaultPoints{{0.5, 0.5}, {0.85, 0.15}, {0.85, 0.85}, {0.15, 0.85}, {0.15, 0.15}};
constexpr double kDefaultDelay = 0.5;
constexpr double kDefaultTimeout = 1.25;
// What the server itself takes for a point: with the defaults a result follows its start by 2 seconds.
constexpr double kComputing = 0.25;
constexpr int kPointDecimals = 4;
constexpr int kResultDecimals = 5;

QVector<Attribute> gazeAttributes(char eye, const QByteArray &number, const Gaze &gaze) {
    return {{eye + ("X" + number), decimals(gaze.point.x, kResultDecimals)},
            {eye + ("Y" + number), decimals(gaze.point.y, kResultDecimals)},
            {eye + ("V" + number), gaze.valid ? "1" : "0"}};
}

}  // namespace

void Calibration::EyeMean::add(const Eye &eye) {
    ++samples;
    if (!eye.visible)
        return;
    ++seen;
    sum = sum + eye.gaze;
}

/// An eye that was away for more than half of the time gives no result.
Gaze Calibration::EyeMean::gaze() const {
    if (seen == 0 || seen * 2 < samples)
        return {};
    return {sum * (1.0 / seen), true};
}

Calibration::Calibration() : points_(kDefaultPoints), delay_(kDefaultDelay), timeout_(kDefaultTimeout) {}

void Calibration::clearPoints() {
    points_.clear();
    stop();
}

void Calibration::resetPoints() {
    points_ = kDefaultPoints;
    stop();
}

void Calibration::addPoint(Point point) {
    if (points_.size() < kMostPoints)
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

std::vector<QByteArray> Calibration::advance(double now, const EyeState &eyes) {
    std::vector<QByteArray> messages;
    if (!running_)
        return messages;
    if (pointShown_ && now >= pointEnd()) {
        messages.push_back(pointMessage("CALIB_RESULT_PT"));
        pointShown_ = false;
        if (measured_.size() >= points_.size()) {
            finish(&messages);
            return messages;
        }
    }
    if (!pointShown_) {
        showPoint(now);
        messages.push_back(pointMessage("CALIB_START_PT"));
    }
    measure(now, eyes);
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
        ++summary.validPoints;
    }
    if (summary.validPoints > 0)
        summary.averageError_px /= summary.validPoints;
    return summary;
}

void Calibration::showPoint(double now) {
    pointShown_ = true;
    pointStart_ = now;
    measured_.push_back({points_[measured_.size()], {}, {}});
}

void Calibration::measure(double now, const EyeState &eyes) {
    const double since = now - pointStart_;
    if (since < delay_ || since > delay_ + timeout_)
        return;
    measured_.back().left.add(eyes.left);
    measured_.back().right.add(eyes.right);
}

void Calibration::finish(std::vector<QByteArray> *messages) {
    running_ = false;
    result_ = measured_;
    messages->push_back(resultMessage());
}

double Calibration::pointEnd() const {
    return pointStart_ + delay_ + timeout_ + kComputing;
}

QByteArray Calibration::pointMessage(const char *id) const {
    const Point target = measured_.back().target;
    return message("CAL", id,
                   {{"PT", QByteArray::number(static_cast<qulonglong>(measured_.size()))},
                    {"CALX", decimals(target.x, kPointDecimals)},
                    {"CALY", decimals(target.y, kPointDecimals)}});
}

QByteArray Calibration::resultMessage() const {
    QVector<Attribute> attributes;
    int number = 0;
    for (const Measurement &point : result_) {
        const QByteArray suffix = QByteArray::number(++number);
        attributes << Attribute{"CALX" + suffix, decimals(point.target.x, kResultDecimals)}
                   << Attribute{"CALY" + suffix, decimals(point.target.y, kResultDecimals)}
                   << gazeAttributes('L', suffix, point.left.gaze()) << gazeAttributes('R', suffix, point.right.gaze());
    }
    return message("CAL", "CALIB_RESULT", attributes);
}

}  // namespace sim::gazepoint
