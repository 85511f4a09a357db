#include "subject/subject.h"

#include "subject/random.h"

#include <algorithm>
#include <cmath>

namespace sim {

namespace {

// Offsets of the independent random streams of one seed.
enum Stream : std::uint64_t {
    PathStream = 100,
    BlinkStream = 200,
    LeftStream = 300,
    RightStream = 400,
    BodyStream = 500
};

constexpr double saccadeLatency_s = 0.180;
constexpr double tremorPeriod_s = 0.004;  // below the sample interval of most devices: looks like white noise
constexpr double driftPeriod_s = 0.120;
constexpr double halfVergence_deg = 0.15;
constexpr double calibrationError_deg = 0.35;  // standard deviation of the error of one eye on one axis
constexpr double goalTolerance_deg = 0.3;      // a closer goal needs no saccade, because the fovea covers it
constexpr Point leftEyeInImage{0.27, 0.46};
constexpr Point rightEyeInImage{0.66, 0.44};
constexpr Point imageCentre{0.5, 0.5};
constexpr double pupilDistance_mm = 63;
constexpr double imageDistance_cm = 62;    // the distance at which the positions in the image apply
constexpr double rotationInImage = 0.012;  // movement of the pupil when the gaze moves from edge to edge
constexpr double minPupil_mm = 2;
constexpr double maxPupil_mm = 8;

/// Returns `live` with the values that the recording has.
Eye withRecorded(Eye live, const Eye &recorded) {
    live.visible = recorded.visible;
    live.gaze = recorded.gaze;
    if (recorded.pupil_mm > 0)
        live.pupil_mm = recorded.pupil_mm;
    return live;
}

double fixationNoise_deg(const SubjectOptions &options) {
    return options.noise_deg ? 0 : options.fixationNoise_deg;
}

}  // namespace

// The variance has four equal parts: tremor and drift, each on two axes.
Subject::EyeModel::EyeModel(std::uint64_t seed, const SubjectOptions &options, double vergence_deg, Point centre)
    : tremor(mix(seed), tremorPeriod_s, fixationNoise_deg(options) / 2),
      drift(mix(seed + 2), driftPeriod_s, fixationNoise_deg(options) / 2),
      noise(mix(seed + 7), options.noise_deg.value_or(0)),
      offset(options.offset ? Point()
                            : options.setup.fromDegrees(vergence_deg + calibrationError_deg * normalOf(mix(seed + 4)),
                                                        calibrationError_deg * normalOf(mix(seed + 5)))),
      pupil(mix(seed + 6), 1.5, 0.06),
      centreInImage(centre) {}

Subject::Subject(const SubjectOptions &options)
    : options_(options),
      path_(options.setup, mix(options.seed + PathStream), options.offset ? 0 : goalTolerance_deg),
      blinks_(mix(options.seed + BlinkStream), options.blinkInterval_s),
      left_(mix(options.seed + LeftStream), options, halfVergence_deg, leftEyeInImage),
      right_(mix(options.seed + RightStream), options, -halfVergence_deg, rightEyeInImage),
      restingPupil_mm_(Random(mix(options.seed + BodyStream)).uniform(3, 4.5)),
      commonPupil_(mix(options.seed + BodyStream + 1), 2, 0.25),
      distance_(mix(options.seed + BodyStream + 2), 5, 0.8),
      head_(mix(options.seed + BodyStream + 3), 4, 0.008) {}

EyeState Subject::at(double seconds) {
    now_s_ = std::max(now_s_, seconds);
    return recording_ && !target_ ? played() : live();
}

void Subject::lookAt(Point target) {
    target_ = target;
    path_.attend(target, now_s_, saccadeLatency_s);
}

void Subject::release() {
    target_.reset();
    if (pointer_)
        path_.attend(*pointer_, now_s_, saccadeLatency_s);
    else
        path_.release(now_s_);
}

void Subject::follow(Point pointer) {
    pointer_ = pointer;
    if (!target_)
        path_.attend(pointer, now_s_, 0);
}

void Subject::play(const Recording &recording, bool once) {
    recording_ = recording;
    playOnce_ = once;
    playedFrom_s_ = now_s_;
}

EyeState Subject::live() {
    const Point gaze = path_.at(now_s_);
    const bool visible = !blinks_.closedAt(now_s_);
    EyeState state;
    state.distance_cm = options_.setup.distance_cm + distance_.at(now_s_);
    state.left = liveEye(left_, gaze, visible, state.distance_cm);
    state.right = liveEye(right_, gaze, visible, state.distance_cm);
    return state;
}

double Subject::millimetreInImage(double distance_cm) {
    return (rightEyeInImage.x - leftEyeInImage.x) / pupilDistance_mm * imageDistance_cm / distance_cm;
}

Eye Subject::liveEye(const EyeModel &model, Point gaze, bool visible, double distance_cm) const {
    Eye eye;
    eye.visible = visible;
    eye.gaze = measuredGaze(model, gaze);
    eye.pupil_mm =
        std::clamp(restingPupil_mm_ + commonPupil_.at(now_s_) + model.pupil.at(now_s_), minPupil_mm, maxPupil_mm);
    const Point atRest =
        model.centreInImage + head_.at(now_s_) + (gaze - Point{0.5, 0.5}) * rotationInImage - imageCentre;
    eye.pupilCentre = imageCentre + atRest * (imageDistance_cm / distance_cm);
    return eye;
}

Point Subject::eyeError(const EyeModel &model) const {
    const Point noise_deg = model.tremor.at(now_s_) + model.drift.at(now_s_);
    return model.offset + options_.setup.fromDegrees(noise_deg.x, noise_deg.y);
}

Point Subject::measuredGaze(const EyeModel &model, Point gaze) const {
    const Point natural = gaze + eyeError(model);
    if (!options_.offset && !options_.noise_deg)
        return natural;
    return options_.setup.turned(natural, options_.offset.value_or(GazeAngles()) + model.noise.at(now_s_));
}

/// Takes the pupil centres from live(). Pupil diameters and distance also come from live() if the recording does not
/// have them.
EyeState Subject::played() {
    const double duration_s = recording_->duration_s();
    const double elapsed_s = now_s_ - playedFrom_s_;
    const bool repeats = duration_s > 0 && !playOnce_;
    const EyeState &recorded = recording_->at(repeats ? std::fmod(elapsed_s, duration_s) : elapsed_s);
    EyeState state = live();
    state.left = withRecorded(state.left, recorded.left);
    state.right = withRecorded(state.right, recorded.right);
    if (recorded.distance_cm > 0)
        state.distance_cm = recorded.distance_cm;
    if (playOnce_ && elapsed_s >= duration_s)
        state.left.visible = state.right.visible = false;
    return state;
}

}  // namespace sim
