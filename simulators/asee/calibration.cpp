#include "asee/calibration.h"

#include <algorithm>

namespace sim::asee_pro {

namespace {

class Mean {
public:
    void add(const TargetMeasurement::Result &result) {
        if (result.sampleCount == 0)
            return;
        sum_ += result.error;
        ++count_;
    }
    [[nodiscard]] float percent() const { return count_ == 0 ? 0 : static_cast<float>(100 * sum_ / count_); }

private:
    double sum_ = 0;
    int count_ = 0;
};

}  // namespace

bool Calibration::hasPoint(int number) const {
    return number >= 1 && number <= static_cast<int>(measured_.size());
}

void Calibration::setMeasured(int number, const TargetMeasurement &measurement) {
    measured_[static_cast<std::size_t>(number - 1)] = measurement;
}

bool Calibration::complete() const {
    return std::all_of(measured_.begin(), measured_.end(), [](const auto &point) { return point.has_value(); });
}

Calibration::Score Calibration::score() const {
    Mean left;
    Mean right;
    for (const auto &point : measured_) {
        if (point) {
            left.add(point->left());
            right.add(point->right());
        }
    }
    return {left.percent(), right.percent()};
}

}  // namespace sim::asee_pro
