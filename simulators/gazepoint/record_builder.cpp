#include "gazepoint/record_builder.h"

#include <cmath>

namespace sim::gazepoint {

namespace {

constexpr double kPixelsPerMm = 4.6;  // of a pupil in the image at the usual distance
constexpr Point kEyesFromCentre_m{0.0315, 0.005};

void update(Gaze *gaze, const Eye &eye) {
    gaze->valid = eye.visible;
    if (eye.visible)
        gaze->point = eye.gaze;
}

void update(PupilRecord *pupil, const Eye &eye, double distance_cm, double usualDistance_cm, double side) {
    pupil->valid = eye.visible;
    if (!eye.visible)
        return;
    pupil->centre = eye.pupilCentre;
    pupil->scale = usualDistance_cm / distance_cm;
    pupil->diameter_px = eye.pupil_mm * kPixelsPerMm * pupil->scale;
    pupil->diameter_mm = eye.pupil_mm;
    pupil->distance_m = distance_cm / 100;
    pupil->position_m = {side * kEyesFromCentre_m.x, kEyesFromCentre_m.y};
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
    record_.time = seconds - timeZero_;
    record_.tick = ticksAtZero_ + std::llround(seconds * static_cast<double>(kTicksPerSecond));
    update(&record_.left, eyes.left);
    update(&record_.right, eyes.right);
    update(&record_.leftPupil, eyes.left, eyes.distance_cm, setup_.distance_cm, -1);
    update(&record_.rightPupil, eyes.right, eyes.distance_cm, setup_.distance_cm, 1);
    record_.best = best(record_.left, record_.right, record_.best);
    record_.fixation = fixations_.add(record_.time, record_.best);
    record_.blink = blinks_.add(seconds, record_.best.valid);
    return record_;
}

void RecordBuilder::restartTime(double seconds) {
    timeZero_ = seconds;
    fixations_.restart();
}

}  // namespace sim::gazepoint
