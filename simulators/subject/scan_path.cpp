#include "subject/scan_path.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace sim {

namespace {

constexpr Point screenCentre{0.5, 0.5};

// Fixations in free viewing: most of them last about a quarter of a second, and the distribution has a long tail.
constexpr double medianFixation_s = 0.260;
constexpr double fixationSigma = 0.35;
constexpr double minFixation_s = 0.150;
constexpr double maxFixation_s = 0.500;

// The main sequence: the duration of a saccade is linear in its amplitude.
constexpr double saccadeBase_s = 0.021;
constexpr double saccadePerDegree_s = 0.0022;

constexpr double medianAmplitude_deg = 6;
constexpr double amplitudeSigma = 0.6;
constexpr double minAmplitude_deg = 2;
constexpr double maxAmplitude_deg = 30;
constexpr int maxTargetAttempts = 20;
constexpr double screenMargin = 0.03;

bool onScreen(Point p) {
    const auto inside = [](double v) { return v >= screenMargin && v <= 1 - screenMargin; };
    return inside(p.x) && inside(p.y);
}

/// Minimum-jerk progress: a smooth velocity profile with one peak, as in a saccade.
double progress(double u) {
    return u * u * u * (10 + u * (6 * u - 15));
}

}  // namespace

Point ScanPath::Saccade::at(double seconds) const {
    if (seconds >= end_s())
        return to;
    return from + (to - from) * progress(std::max(0.0, (seconds - start_s) / duration_s));
}

ScanPath::ScanPath(const PhysicalSetup &setup, std::uint64_t seed, double tolerance_deg)
    : setup_(setup), random_(seed), tolerance_deg_(tolerance_deg) {
    saccade_.from = saccade_.to = screenCentre;
    nextDecision_s_ = medianFixation_s;
}

Point ScanPath::at(double seconds) {
    while (seconds >= nextDecision_s_)
        decide();
    return saccade_.at(seconds);
}

void ScanPath::attend(Point goal, double now_s, double latency_s) {
    goal_ = goal;
    nextDecision_s_ = std::max(now_s + latency_s, saccade_.end_s());
}

void ScanPath::release(double now_s) {
    goal_.reset();
    nextDecision_s_ = std::max(now_s, saccade_.end_s()) + minFixation_s;
}

void ScanPath::decide() {
    if (!goal_) {
        moveTo(nextTarget());
        nextDecision_s_ =
            saccade_.end_s() + random_.logNormalWithin(medianFixation_s, fixationSigma, minFixation_s, maxFixation_s);
    } else if (setup_.degreesBetween(saccade_.to, *goal_) > tolerance_deg_) {
        moveTo(*goal_);
        nextDecision_s_ = saccade_.end_s();
    } else {
        nextDecision_s_ = std::numeric_limits<double>::infinity();
    }
}

void ScanPath::moveTo(Point target) {
    // The path of a pointer that moves all the time has saccades without a fixation between them.
    if (fixationEnded_ && nextDecision_s_ > saccade_.end_s())
        fixationEnded_({saccade_.end_s(), nextDecision_s_, saccade_.to});
    saccade_.from = saccade_.to;
    saccade_.to = target;
    saccade_.start_s = nextDecision_s_;
    saccade_.duration_s = saccadeBase_s + saccadePerDegree_s * setup_.degreesBetween(saccade_.from, target);
}

Point ScanPath::nextTarget() {
    for (int attempt = 0; attempt < maxTargetAttempts; ++attempt) {
        const double amplitude =
            random_.logNormalWithin(medianAmplitude_deg, amplitudeSigma, minAmplitude_deg, maxAmplitude_deg);
        const double direction = random_.uniform(0, twoPi);
        const Point target =
            saccade_.to + setup_.fromDegrees(amplitude * std::cos(direction), amplitude * std::sin(direction));
        if (onScreen(target))
            return target;
    }
    return screenCentre;
}

}  // namespace sim
