#include "subject/subject.h"

#include "subject/random.h"

#include <algorithm>
#include <cmath>

namespace sim {

namespace {

// Numbers of the independent random streams that one seed is split into.
enum Stream : std::uint64_t {
    PathStream = 100,
    BlinkStream = 200,
    LeftStream = 300,
    RightStream = 400,
    BodyStream = 500
};

constexpr double kLatency = 0.180;       // of a saccade to a target that appears, seconds
constexpr double kTremorPeriod = 0.004;  // shorter than the steps of most devices: looks like white noise
constexpr double kDriftPeriod = 0.120;
constexpr double kVergence_deg = 0.15;
constexpr double kAccuracy_deg = 0.35;  // deviation of what calibration leaves, one eye and axis
constexpr Point kLeftInImage{0.27, 0.46};
constexpr Point kRightInImage{0.66, 0.44};
constexpr Point kImageCentre{0.5, 0.5};
constexpr double kBetweenPupils_mm = 63;
constexpr double kImageDistance_cm = 62;    // where the eyes are in the image as above
constexpr double kRotationInImage = 0.012;  // how far a look from edge to edge moves the pupil in the image
constexpr double kSmallestPupil_mm = 2;
constexpr double kLargestPupil_mm = 8;

}  // namespace

// Tremor and drift on two axes, equally strong: four equal parts of the variance.
Subject::EyeModel::EyeModel(std::uint64_t seed, const SubjectOptions &options, double vergence_deg, Point centre)
    : tremor(mix(seed), kTremorPeriod, options.fixationNoise_deg / 2),
      drift(mix(seed + 2), kDriftPeriod, options.fixationNoise_deg / 2),
      offset(options.setup.fromDegrees(vergence_deg + kAccuracy_deg * normalOf(mix(seed + 4)),
                                       kAccuracy_deg * normalOf(mix(seed + 5)))),
      pupil(mix(seed + 6), 1.5, 0.06),
      centreInImage(centre) {}

Subject::Subject(const SubjectOptions &options)
    : options_(options),
      path_(options.setup, mix(options.seed + PathStream)),
      blinks_(mix(options.seed + BlinkStream), options.blinkInterval),
      left_(mix(options.seed + LeftStream), options, kVergence_deg, kLeftInImage),
      right_(mix(options.seed + RightStream), options, -kVergence_deg, kRightInImage),
      restingPupil_mm_(Random(mix(options.seed + BodyStream)).uniform(3, 4.5)),
      commonPupil_(mix(options.seed + BodyStream + 1), 2, 0.25),
      distance_(mix(options.seed + BodyStream + 2), 5, 0.8),
      head_(mix(options.seed + BodyStream + 3), 4, 0.008) {}

EyeState Subject::at(double seconds) {
    now_ = std::max(now_, seconds);
    return recording_ && !target_ ? played() : live();
}

void Subject::lookAt(Point target) {
    target_ = target;
    path_.attend(target, now_, kLatency);
}

void Subject::release() {
    target_.reset();
    if (pointer_)
        path_.attend(*pointer_, now_, kLatency);
    else
        path_.release(now_);
}

void Subject::follow(Point pointer) {
    pointer_ = pointer;
    if (!target_)
        path_.attend(pointer, now_, 0);
}

void Subject::play(const Recording &recording, bool once) {
    recording_ = recording;
    playOnce_ = once;
    playedFrom_ = now_;
}

EyeState Subject::live() {
    const Point gaze = path_.at(now_);
    const bool visible = !blinks_.closedAt(now_);
    EyeState state;
    state.distance_cm = options_.setup.distance_cm + distance_.at(now_);
    state.left = liveEye(left_, gaze, visible, state.distance_cm);
    state.right = liveEye(right_, gaze, visible, state.distance_cm);
    return state;
}

double Subject::millimetreInImage(double distance_cm) {
    return (kRightInImage.x - kLeftInImage.x) / kBetweenPupils_mm * kImageDistance_cm / distance_cm;
}

Eye Subject::liveEye(const EyeModel &model, Point gaze, bool visible, double distance_cm) const {
    Eye eye;
    eye.visible = visible;
    eye.gaze = gaze + eyeError(model);
    eye.pupil_mm = std::clamp(restingPupil_mm_ + commonPupil_.at(now_) + model.pupil.at(now_), kSmallestPupil_mm,
                              kLargestPupil_mm);
    const Point atRest =
        model.centreInImage + head_.at(now_) + (gaze - Point{0.5, 0.5}) * kRotationInImage - kImageCentre;
    eye.pupilCentre = kImageCentre + atRest * (kImageDistance_cm / distance_cm);
    return eye;
}

Point Subject::eyeError(const EyeModel &model) const {
    const Point noise_deg = model.tremor.at(now_) + model.drift.at(now_);
    return model.offset + options_.setup.fromDegrees(noise_deg.x, noise_deg.y);
}

/// What the recording does not tell (pupil centres always, pupils and distance sometimes) is as in live().
EyeState Subject::played() {
    const double duration = recording_->duration();
    const double elapsed = now_ - playedFrom_;
    const bool over = playOnce_ && elapsed >= duration;
    EyeState state = live();
    const EyeState &recorded = recording_->at(duration > 0 && !playOnce_ ? std::fmod(elapsed, duration) : elapsed);
    const auto copy = [over](const Eye &from, Eye *to) {
        to->visible = from.visible && !over;
        to->gaze = from.gaze;
        if (from.pupil_mm > 0)
            to->pupil_mm = from.pupil_mm;
    };
    copy(recorded.left, &state.left);
    copy(recorded.right, &state.right);
    if (recorded.distance_cm > 0)
        state.distance_cm = recorded.distance_cm;
    return state;
}

}  // namespace sim
