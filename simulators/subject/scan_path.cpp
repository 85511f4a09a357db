#include "subject/scan_path.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace sim {

namespace {

constexpr Point kCentre{0.5, 0.5};

// Fixations in free viewing: skewed towards short ones, most of them about a quarter of a second.
constexpr double kFixationMedian = 0.260;
constexpr double kFixationSigma = 0.35;
constexpr double kFixationShortest = 0.150;
constexpr double kFixationLongest = 0.500;

// The main sequence: duration grows in line with amplitude.
constexpr double kSaccadeBase = 0.021;
constexpr double kSaccadePerDegree = 0.0022;

constexpr double kAmplitudeMedian = 6;  // degrees
constexpr double kAmplitudeSigma = 0.6;
constexpr double kAmplitudeSmallest = 2;
constexpr double kAmplitudeLargest = 30;
constexpr int kTargetAttempts = 20;
constexpr double kScreenMargin = 0.03;

// A goal that is closer than this needs no saccade; the fovea covers it.
constexpr double kOnTarget = 0.3;  // degrees

bool onScreen(Point p) {
    const auto inside = [](double v) { return v >= kScreenMargin && v <= 1 - kScreenMargin; };
    return inside(p.x) && inside(p.y);
}

/// Minimum-jerk progress: the smooth, single-peaked velocity profile of a saccade.
double progress(double u) {
    return u * u * u * (10 + u * (6 * u - 15));
}

}  // namespace

Point ScanPath::Saccade::at(double seconds) const {
    if (seconds >= end())
        return to;
    return from + (to - from) * progress(std::max(0.0, (seconds - start) / duration));
}

ScanPath::ScanPath(const PhysicalSetup &setup, std::uint64_t seed) : setup_(setup), random_(seed) {
    saccade_.from = saccade_.to = kCentre;
    nextDecision_ = kFixationMedian;
}

Point ScanPath::at(double seconds) {
    while (seconds >= nextDecision_)
        decide();
    return saccade_.at(seconds);
}

void ScanPath::attend(Point goal, double now, double latency) {
    goal_ = goal;
    nextDecision_ = std::max(now + latency, saccade_.end());
}

void ScanPath::release(double now) {
    goal_.reset();
    nextDecision_ = std::max(now, saccade_.end()) + kFixationShortest;
}

void ScanPath::decide() {
    if (!goal_) {
        moveTo(nextTarget());
        nextDecision_ = saccade_.end() +
                        random_.logNormalWithin(kFixationMedian, kFixationSigma, kFixationShortest, kFixationLongest);
    } else if (setup_.degreesBetween(saccade_.to, *goal_) > kOnTarget) {
        moveTo(*goal_);
        nextDecision_ = saccade_.end();
    } else {
        nextDecision_ = std::numeric_limits<double>::infinity();
    }
}

void ScanPath::moveTo(Point target) {
    saccade_.from = saccade_.to;
    saccade_.to = target;
    saccade_.start = nextDecision_;
    saccade_.duration = kSaccadeBase + kSaccadePerDegree * setup_.degreesBetween(saccade_.from, target);
}

Point ScanPath::nextTarget() {
    for (int attempt = 0; attempt < kTargetAttempts; ++attempt) {
        const double amplitude =
            random_.logNormalWithin(kAmplitudeMedian, kAmplitudeSigma, kAmplitudeSmallest, kAmplitudeLargest);
        const double direction = random_.uniform(0, 6.283185307179586);
        const Point target =
            saccade_.to + setup_.fromDegrees(amplitude * std::cos(direction), amplitude * std::sin(direction));
        if (onScreen(target))
            return target;
    }
    return kCentre;
}

}  // namespace sim
