#include "asee/coefficients.h"
#include "asee/results.h"
#include "asee/tracker.h"

#include <thread>

namespace sim::asee_pro {

namespace {

constexpr int percentPerStep = 5;
constexpr int stepsPerPoint = 100 / percentPerStep;
constexpr int measuredFromPercent = 40;  // before that, the person moves the gaze to the point
constexpr int stuckAtPercent = 50;

}  // namespace

/// Measures one calibration point. Each call is one step.
class Tracker::PointRun {
public:
    struct Reports {
        Receiver<asee_sdk::PointCallback> progress;
        Receiver<asee_sdk::PointCallback> finish;
    };

    PointRun(Tracker &tracker, int number, Point target, Reports reports)
        : tracker_(tracker),
          number_(number),
          measurement_(target),
          reports_(reports),
          endless_(tracker.options_.has("endless-point")) {}

    bool operator()() {
        if (stuck_)
            return true;
        if (percent_ >= measuredFromPercent)
            measurement_.add(tracker_.person_.now());
        report(reports_.progress, percent_);
        if (percent_ == 100)
            return finish();
        stuck_ = endless_ && percent_ == stuckAtPercent;
        percent_ += percentPerStep;
        return true;
    }

private:
    bool finish() {
        tracker_.finishPoint(number_, measurement_);
        report(reports_.finish, Ok);
        return false;
    }

    void report(const Receiver<asee_sdk::PointCallback> &receiver, int value) const {
        if (receiver.callback != nullptr)
            receiver.callback(number_, value, receiver.context);
    }

    Tracker &tracker_;
    int number_;
    TargetMeasurement measurement_;
    Reports reports_;
    bool endless_;
    bool stuck_ = false;
    int percent_ = 0;
};

int Tracker::_7i_set_calibration_mode(int mode) {
    return mode >= 0 ? Ok : BadArgument;
}

int Tracker::_7i_start_calibration(int points) {
    const std::lock_guard lock(mutex_);
    if (!streams_)
        return NotStarted;
    if (points < 1 || points > Calibration::maxPointCount)
        return BadArgument;
    if (pointRunning_)
        return PointRunning;
    calibration_.emplace(points);
    return Ok;
}

int Tracker::_7i_start_calibration_point(int number, const float *xy, asee_sdk::PointCallback progress,
                                         void *progressContext, asee_sdk::PointCallback finish, void *finishContext) {
    std::unique_ptr<Ticker> previous;  // destroyed after the lock is released, see _7i_stop
    std::unique_lock lock(mutex_);
    if (!calibration_)
        return NotCalibrating;
    if (xy == nullptr || !calibration_->hasPoint(number) || options_.has("refuse-point"))
        return BadArgument;
    if (pointRunning_)
        return PointRunning;
    const Point target{static_cast<double>(xy[0]), static_cast<double>(xy[1])};
    person_.lookAt(target);
    previous = std::move(point_);
    pointRunning_ = true;
    PointRun run(*this, number, target, {{progress, progressContext}, {finish, finishContext}});
    if (!options_.has("instant-point")) {
        point_ = std::make_unique<Ticker>(stepsPerPoint / options_.point_s, run);
        return Ok;
    }
    lock.unlock();
    std::thread([&run] {
        while (run()) {
        }
    }).join();
    return Ok;
}

void Tracker::finishPoint(int number, const TargetMeasurement &measurement) {
    const std::lock_guard lock(mutex_);
    pointRunning_ = false;
    if (calibration_)
        calibration_->setMeasured(number, measurement);
}

std::unique_ptr<Ticker> Tracker::endCalibration() {
    calibration_.reset();
    pointRunning_ = false;
    person_.release();
    return std::move(point_);
}

int Tracker::_7i_cancel_calibration() {
    std::unique_ptr<Ticker> point;  // destroyed after the lock is released, see _7i_stop
    const std::lock_guard lock(mutex_);
    point = endCalibration();
    return streams_ ? Ok : NotStarted;
}

int Tracker::_7i_complete_calibration() {
    return _7i_cancel_calibration();
}

int Tracker::_7i_compute_calibration(void *coefficients) {
    const std::lock_guard lock(mutex_);
    if (!calibration_)
        return NotCalibrating;
    if (coefficients == nullptr)
        return BadArgument;
    if (options_.has("compute") || !calibration_->complete())
        return ComputeFailed;
    score_ = calibration_->score();
    Coefficients{score_.left, score_.right}.write(coefficients);
    return Ok;
}

int Tracker::_7i_get_calibration_score(float *left, float *right) {
    const std::lock_guard lock(mutex_);
    if (left == nullptr || right == nullptr)
        return BadArgument;
    *left = score_.left;
    *right = score_.right;
    return Ok;
}

}  // namespace sim::asee_pro
