#include "asee/coefficients.h"
#include "asee/results.h"
#include "asee/tracker.h"

#include <thread>

namespace sim::asee_pro {

namespace {

constexpr int kPercentStep = 5;
constexpr int kStepsOfPoint = 100 / kPercentStep;
constexpr int kSettledAtPercent = 40;  // by then the person looks at the point
constexpr int kStuckAtPercent = 50;

}  // namespace

/// One calibration point while the person looks at it, a step at a time.
class Tracker::PointRun {
public:
    struct Reports {
        Receiver<asee::PointCallback> progress;
        Receiver<asee::PointCallback> finish;
    };

    PointRun(Tracker *tracker, int number, Point target, Reports reports)
        : tracker_(tracker),
          number_(number),
          measurement_(target),
          reports_(reports),
          endless_(tracker->options_.has("endless-point")) {}

    bool operator()() {
        if (stuck_)
            return true;
        if (percent_ >= kSettledAtPercent)
            measurement_.add(tracker_->person_.now());
        report(reports_.progress, percent_);
        if (percent_ == 100)
            return finish();
        stuck_ = endless_ && percent_ == kStuckAtPercent;
        percent_ += kPercentStep;
        return true;
    }

private:
    bool finish() {
        tracker_->pointDone(number_, measurement_);
        report(reports_.finish, Ok);
        return false;
    }

    void report(const Receiver<asee::PointCallback> &receiver, int value) const {
        if (receiver.callback != nullptr)
            receiver.callback(number_, value, receiver.context);
    }

    Tracker *tracker_;
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
    if (points < 1 || points > Calibration::kMostPoints)
        return BadArgument;
    if (pointRunning_)
        return PointRunning;
    calibration_.emplace(points);
    return Ok;
}

int Tracker::_7i_start_calibration_point(int number, const float *xy, asee::PointCallback progress,
                                         void *progressContext, asee::PointCallback finish, void *finishContext) {
    std::unique_ptr<Ticker> previous;  // ends after the lock, see _7i_stop
    std::unique_lock lock(mutex_);
    if (!calibration_)
        return NotCalibrating;
    if (xy == nullptr || !calibration_->hasPoint(number))
        return BadArgument;
    if (pointRunning_)
        return PointRunning;
    const Point target{static_cast<double>(xy[0]), static_cast<double>(xy[1])};
    person_.lookAt(target);
    previous = std::move(point_);
    pointRunning_ = true;
    PointRun run(this, number, target, {{progress, progressContext}, {finish, finishContext}});
    if (!options_.has("instant-point")) {
        point_ = std::make_unique<Ticker>(kStepsOfPoint / options_.point_s, run);
        return Ok;
    }
    lock.unlock();
    std::thread([&run] {
        while (run()) {
        }
    }).join();
    return Ok;
}

void Tracker::pointDone(int number, const TargetMeasurement &measurement) {
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
    std::unique_ptr<Ticker> ending;  // see _7i_stop
    const std::lock_guard lock(mutex_);
    ending = endCalibration();
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
