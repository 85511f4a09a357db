#pragma once

#include "subject/blinks.h"
#include "subject/eye_state.h"
#include "subject/physical_setup.h"
#include "subject/recording.h"
#include "subject/scan_path.h"
#include "subject/smooth_noise.h"

#include <cstdint>
#include <optional>

namespace sim {

struct SubjectOptions {
    std::uint64_t seed = 1;
    PhysicalSetup setup;
    double blinkInterval = 4;        ///< seconds between blinks in the middle; 0: never blinks
    double fixationNoise_deg = 0.3;  ///< root mean square distance of one eye from the point it rests on
};

/// One simulated person in front of a tracker, the same for every simulated device.
///
/// Looks around freely: fixations, saccades, blinks, two eyes with errors of their own, pupils and distance
/// that drift. A person with the same options does the same things at the same times, however often at() is
/// called. Owned by the device that shows it; not thread-safe, all calls from one thread or under the owner's
/// lock.
class Subject {
public:
    explicit Subject(const SubjectOptions &options = SubjectOptions());

    /// The person `seconds` after the start. Time does not run backwards: an earlier time gives the latest
    /// state.
    EyeState at(double seconds);

    /// Turns to `target` (a calibration target, say) after a natural latency and rests there until release().
    /// Comes before everything else that the person has been told to do.
    void lookAt(Point target);
    void release();

    /// Follows the pointer, whose position the owner reports here whenever it likes.
    void follow(Point pointer);

    /// Acts out `recording` from now on; `once`: the eyes are gone after its end, else it starts again.
    void play(const Recording &recording, bool once);

    [[nodiscard]] const PhysicalSetup &setup() const { return options_.setup; }

    /// How large a millimetre at the eyes is in the camera image, as a fraction of the image's width.
    static double millimetreInImage(double distance_cm);

private:
    /// What makes one eye differ from the other.
    struct EyeModel {
        EyeModel(std::uint64_t seed, const SubjectOptions &options, double vergence_deg, Point centreInImage);

        PointNoise tremor;
        PointNoise drift;
        Point offset;  // vergence and the error that calibration left, in fractions of the screen
        SmoothNoise pupil;
        Point centreInImage;
    };

    [[nodiscard]] Eye liveEye(const EyeModel &model, Point gaze, bool visible, double distance_cm) const;
    EyeState live();
    EyeState played();
    [[nodiscard]] Point eyeError(const EyeModel &model) const;

    SubjectOptions options_;
    ScanPath path_;
    Blinks blinks_;
    EyeModel left_;
    EyeModel right_;
    double restingPupil_mm_;
    SmoothNoise commonPupil_;
    SmoothNoise distance_;
    PointNoise head_;

    double now_ = 0;
    std::optional<Point> target_;
    std::optional<Point> pointer_;
    std::optional<Recording> recording_;
    bool playOnce_ = false;
    double playedFrom_ = 0;
};

}  // namespace sim
