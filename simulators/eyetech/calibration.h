#pragma once

#include "device/target_measurement.h"
#include "eyetech/options.h"
#include "eyetech/results.h"
#include "trackers/eyetech/sdk/quicklink2.h"

#include <array>
#include <chrono>
#include <mutex>
#include <optional>
#include <vector>

namespace sim::eyetech {

/// A calibration: its targets, the running measurement, and the scores.
///
/// Thread-safe: the program calls it, and the thread of the device calls observe().
class Calibration {
public:
    using Clock = std::chrono::steady_clock;
    using Eyes = std::array<Point, 2>;  ///< left, right

    /// Resets the calibration for `device`, with the targets of `type`. Returns false for an unknown type.
    [[nodiscard]] bool initialize(int device, int type, const Options &options);
    [[nodiscard]] int device() const;
    [[nodiscard]] std::vector<quicklink2::QLTarget> targets() const;

    /// Starts measuring a target for `duration`. Returns its position on the screen.
    [[nodiscard]] Answer<Point> start(int target, Clock::duration duration);
    void observe(const EyeState &eyes);
    void cancel();

    /// Returns a TargetStatus, or nothing for an unknown target.
    [[nodiscard]] std::optional<int> status(int target);
    [[nodiscard]] Answer<quicklink2::QLScore> score(int target, int eye);
    /// Returns true if all targets are done.
    [[nodiscard]] bool complete();

    void addBias(int eye, Point percent);
    [[nodiscard]] Eyes bias() const;

    Calibration() = default;
    Calibration(const Calibration &other);
    Calibration &operator=(const Calibration &) = delete;

    /// The file is text: a title, and a line for each target.
    [[nodiscard]] bool save(const QString &path) const;
    [[nodiscard]] bool load(const QString &path);

private:
    struct Target {
        quicklink2::QLTarget place{};
        int status = 0;
        int attemptCount = 0;
        std::array<quicklink2::QLScore, 2> scores{};
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
    void finishDueRun();
    [[nodiscard]] bool fails(const Target &target) const;
    std::vector<Target>::iterator find(int target);

    mutable std::mutex mutex_;
    State state_;  // guarded by mutex_
};

}  // namespace sim::eyetech
