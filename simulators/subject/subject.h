#pragma once

#include "subject/blinks.h"
#include "subject/eye_state.h"
#include "subject/gaze_angles.h"
#include "subject/physical_setup.h"
#include "subject/recording.h"
#include "subject/scan_path.h"
#include "subject/smooth_noise.h"
#include "subject/white_noise.h"

#include <cstdint>
#include <functional>
#include <optional>

namespace sim {

struct SubjectOptions {
    std::uint64_t seed = 1;
    PhysicalSetup setup;
    double blinkInterval_s = 4;      ///< median time between blinks; 0: no blinks
    double fixationNoise_deg = 0.3;  ///< root mean square distance of one eye from its fixation point
    /// The constant error of both eyes, instead of a random error for each eye. The person then also looks exactly at
    /// targets and at the pointer. See PhysicalSetup::turned().
    std::optional<GazeAngles> offset;
    /// The standard deviation of white noise on each angle of each eye, which replaces the fixation noise.
    std::optional<double> noise_deg;
};

constexpr double maxOffset_deg = 20;  ///< on each axis
constexpr double maxNoise_deg = 5;

/// The simulated person in front of a tracker, the same for all simulated devices.
///
/// Looks around freely with fixations, saccades and blinks. Each eye has its own error, and pupils and distance drift.
/// The state at a time depends on the options and on the calls below, but not on how often at() is called. Not
/// thread-safe: the device that owns the person calls it from one thread or under a lock.
class Subject {
public:
    explicit Subject(const SubjectOptions &options = SubjectOptions());

    /// Returns the state `seconds` after the start. If the previous call had a later time, its time is used.
    EyeState at(double seconds);

    /// Looks at `target`, for instance a calibration target, after a natural latency and until release(). Overrides
    /// follow() and play().
    void lookAt(Point target);
    void release();

    /// Looks at the mouse pointer. The owner calls this repeatedly, also if the position has not changed.
    void follow(Point pointer);

    /// Plays `recording` in a loop from now on. With `once`, it is played once, and no eye is visible afterwards.
    void play(const Recording &recording, bool once);

    /// Calls `ended` at the end of each fixation of the scan path, from at(). A recording that is played has no path.
    void onFixation(const std::function<void(const PathFixation &)> &ended) { path_.onFixation(ended); }

    [[nodiscard]] const PhysicalSetup &setup() const { return options_.setup; }

    /// Returns the size of one millimetre at the eyes as a fraction of the width of the camera image.
    static double millimetreInImage(double distance_cm);

private:
    /// The properties in which the two eyes differ.
    struct EyeModel {
        EyeModel(std::uint64_t seed, const SubjectOptions &options, double vergence_deg, Point centreInImage);

        PointNoise tremor;
        PointNoise drift;
        WhiteNoise noise;
        Point offset;  // vergence and the remaining calibration error, in fractions of the screen
        SmoothNoise pupil;
        Point centreInImage;
    };

    [[nodiscard]] Eye liveEye(const EyeModel &model, Point gaze, bool visible, double distance_cm) const;
    EyeState live();
    EyeState played();
    [[nodiscard]] Point eyeError(const EyeModel &model) const;
    [[nodiscard]] Point measuredGaze(const EyeModel &model, Point gaze) const;

    SubjectOptions options_;
    ScanPath path_;
    Blinks blinks_;
    EyeModel left_;
    EyeModel right_;
    double restingPupil_mm_;
    SmoothNoise commonPupil_;
    SmoothNoise distance_;
    PointNoise head_;

    double now_s_ = 0;
    std::optional<Point> target_;
    std::optional<Point> pointer_;
    std::optional<Recording> recording_;
    bool playOnce_ = false;
    double playedFrom_s_ = 0;
};

}  // namespace sim
