#include "gazepoint/fixation_detector.h"

#include <algorithm>

namespace sim::gazepoint {

namespace {

// Just below the time from the first to the fourth sample of a 60 Hz tracker, which really takes 60.9 samples per
// second.
constexpr double minFixation_s = 0.045;
constexpr double maxDispersion_deg = 1.2;

}  // namespace

FixationDetector::FixationDetector(const PhysicalSetup &setup) : setup_(setup) {}

const Fixation &FixationDetector::add(double time_s, const Gaze &gaze) {
    if (fixation_.valid && gaze.valid && together(gaze.point, fixation_.centre)) {
        extend(time_s, gaze.point);
    } else {
        fixation_.valid = false;
        if (gaze.valid)
            search(time_s, gaze.point);
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

void FixationDetector::extend(double time_s, Point point) {
    sum_ = sum_ + point;
    ++sampleCount_;
    fixation_.centre = sum_ * (1.0 / sampleCount_);
    fixation_.duration_s = time_s - fixation_.start_s;
}

void FixationDetector::search(double time_s, Point point) {
    const auto stray = [&](const Sample &sample) { return !together(sample.point, point); };
    const auto lastStray = std::find_if(candidates_.rbegin(), candidates_.rend(), stray);
    candidates_.erase(candidates_.begin(), lastStray.base());
    candidates_.push_back({time_s, point});
    if (time_s - candidates_.front().time_s >= minFixation_s)
        start();
}

void FixationDetector::start() {
    ++fixation_.id;
    fixation_.valid = true;
    fixation_.start_s = candidates_.front().time_s;
    sum_ = Point();
    sampleCount_ = 0;
    for (const Sample &sample : candidates_)
        extend(sample.time_s, sample.point);
    candidates_.clear();
}

bool FixationDetector::together(Point a, Point b) const {
    return setup_.degreesBetween(a, b) <= maxDispersion_deg;
}

}  // namespace sim::gazepoint
