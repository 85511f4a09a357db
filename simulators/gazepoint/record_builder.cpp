#include "gazepoint/record_builder.h"

#include <cmath>

namespace sim::gazepoint {

namespace {

constexpr double pixelsPerMm = 4.6;  // of a pupil in the image, at the distance of the setup
constexpr Point eyeFromCentre_m{0.0315, 0.005};

Gaze updated(Gaze gaze, const Eye &eye) {
    gaze.valid = eye.visible;
    if (eye.visible)
        gaze.point = eye.gaze;
    return gaze;
}

/// `side` is -1 for the left eye and 1 for the right one.
PupilRecord updated(PupilRecord pupil, const Eye &eye, double side, double distance_cm, double setupDistance_cm) {
    pupil.valid = eye.visible;
    if (!eye.visible)
        return pupil;
    pupil.centre = eye.pupilCentre;
    pupil.scale = setupDistance_cm / distance_cm;
    pupil.diameter_px = eye.pupil_mm * pixelsPerMm * pupil.scale;
    pupil.diameter_mm = eye.pupil_mm;
    pupil.distance_m = distance_cm / 100;
    pupil.position_m = {side * eyeFromCentre_m.x, eyeFromCentre_m.y};
    return pupil;
}

Gaze best(const Gaze &left, const Gaze &right, const Gaze &previous) {
    if (left.valid && right.valid)
        return {(left.point + right.point) * 0.5, true};
    if (left.valid || right.valid)
        return left.valid ? left : right;
    return {previous.point, false};
}

}  // namespace

RecordBuilder::RecordBuilder(const PhysicalSetup &setup, std::int64_t ticksAtZero)
    : setup_(setup), ticksAtZero_(ticksAtZero), fixations_(setup) {}

Record RecordBuilder::build(double seconds, const EyeState &eyes) {
    ++record_.count;
    record_.time_s = seconds - timeZero_s_;
    record_.tick = ticksAtZero_ + std::llround(seconds * static_cast<double>(ticksPerSecond));
    record_.left = updated(record_.left, eyes.left);
    record_.right = updated(record_.right, eyes.right);
    record_.leftPupil = updated(record_.leftPupil, eyes.left, -1, eyes.distance_cm, setup_.distance_cm);
    record_.rightPupil = updated(record_.rightPupil, eyes.right, 1, eyes.distance_cm, setup_.distance_cm);
    record_.best = best(record_.left, record_.right, record_.best);
    record_.fixation = fixations_.add(record_.time_s, record_.best);
    record_.blink = blinks_.add(seconds, record_.best.valid);
    return record_;
}

void RecordBuilder::restartTime(double seconds) {
    timeZero_s_ = seconds;
    fixations_.restart();
}

}  // namespace sim::gazepoint
