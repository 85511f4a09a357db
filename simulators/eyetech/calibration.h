#pragma once

#include "device/target_measurement.h"
#include "eyetech/options.h"
#include "trackers/eyetech/quicklink2.h"

#include <array>
#include <chrono>
#include <mutex>
#include <optional>
#include <vector>

namespace sim::eyetech {

/// A calibration: its targets, the one that is being measured, and how well each one was hit.
///
/// Callable from any thread: the program asks, the device's thread brings what it sees.
class Calibration {
public:
    using Clock = std::chrono::steady_clock;
    using Eyes = std::array<Point, 2>;  ///< of the left and the right eye

    /// Begins anew for `device` with the targets of `type`; false for a type that there is not.
    bool initialize(int device, int type, const Options &options);
    [[nodiscard]] int device() const;
    [[nodiscard]] std::vector<QLTarget> targets() const;

    /// Measures a target from now on for `duration`; where it is on the screen goes to `place`.
    int begin(int target, Clock::duration duration, Point *place);
    void observe(const EyeState &eyes);
    void cancel();

    /// A TargetStatus; nothing for an unknown target.
    std::optional<int> status(int target);
    int score(int target, int eye, QLScore *score);
    /// All targets are done.
    bool complete();

    void addBias(int eye, Point percent);
    [[nodiscard]] Eyes bias() const;

    Calibration() = default;
    Calibration(const Calibration &other);
    Calibration &operator=(const Calibration &) = delete;

    /// A text file: a title, then a line for each target.
    [[nodiscard]] bool save(const QString &path) const;
    bool load(const QString &path);

private:
    struct Target {
        QLTarget place{};
        int status = 0;
        int attempts = 0;
        std::array<QLScore, 2> scores{};
    };
    struct Run {
        int target = 0;
        Clock::time_point settled;
        Clock::time_point end;
        TargetMeasurement measurement;
    };
    struct State {
        int device = 0;
        std::vector<Target> targets;
        std::optional<Run> run;
        Eyes bias;
        Options options;
    };

    [[nodiscard]] State state() const;
    void endRunWhenDue();
    [[nodiscard]] bool spoilt(const Target &target) const;
    std::vector<Target>::iterator find(int target);

    mutable std::mutex mutex_;
    State state_;  // guarded by mutex_
};

}  // namespace sim::eyetech
