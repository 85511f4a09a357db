#include "gazepoint/fixation_detector.h"

#include <algorithm>

namespace sim::gazepoint {

namespace {

// Four samples of a 60 Hz device (60.9 a second in truth) must be enough.
constexpr double kShortestFixation = 0.045;
constexpr double kDispersion_deg = 1.2;

}  // namespace

FixationDetector::FixationDetector(const PhysicalSetup &setup) : setup_(setup) {}

const Fixation &FixationDetector::add(double time, const Gaze &gaze) {
    if (fixation_.valid && gaze.valid && together(gaze.point, fixation_.centre)) {
        extend(time, gaze.point);
    } else {
        fixation_.valid = false;
        if (gaze.valid)
            search(time, gaze.point);
        else
            candidates_.clear();
    }
    return fixation_;
}

void FixationDetector::restart() {
    const int id = fixation_.id;
    fixation_ = Fixation();
    fixation_.id = id;
    candidates_.clear();
}

void FixationDetector::extend(double time, Point point) {
    sum_ = sum_ + point;
    ++samples_;
    fixation_.centre = sum_ * (1.0 / samples_);
    fixation_.duration = time - fixation_.start;
}

void FixationDetector::search(double time, Point point) {
    const auto stray = [&](const Sample &sample) { return !together(sample.point, point); };
    const auto lastStray = std::find_if(candidates_.rbegin(), candidates_.rend(), stray);
    candidates_.erase(candidates_.begin(), lastStray.base());
    candidates_.push_back({time, point});
    if (time - candidates_.front().time >= kShortestFixation)
        begin();
}

void FixationDetector::begin() {
    ++fixation_.id;
    fixation_.valid = true;
    fixation_.start = candidates_.front().time;
    sum_ = Point();
    samples_ = 0;
    for (const Sample &sample : candidates_)
        extend(sample.time, sample.point);
    candidates_.clear();
}

bool FixationDetector::together(Point a, Point b) const {
    return setup_.degreesBetween(a, b) <= kDispersion_deg;
}

}  // namespace sim::gazepoint
