#include "trackers/asee/calib_worker.h"

#include "toolkit/whole_file.h"
#include "trackers/asee/asee_log.h"
#include "trackers/asee/calibration_gate.h"
#include "trackers/asee/calibration_layout.h"
#include "trackers/asee/calibration_widget.h"
#include "trackers/asee/live_objects.h"

#include <QDir>
#include <QSaveFile>
#include <QScopeGuard>
#include <utility>

namespace {

constexpr int pointCount = static_cast<int>(calibration_layout::points.size());
constexpr int firstPoint = 4;  // the centre

/// Prints what a function of the library returned.
int printed(const char *function, int result) {
    asee::print("%s: %d\n", function, result);
    return result;
}

// The library calls these on a thread of its own, perhaps when the screen is gone.

void onProgress(int first, int second, void *context) {
    LiveObjects<CalibrationWidget>::with(
        context, [second](CalibrationWidget &screen) { Q_EMIT screen.signal_calib_progress(second); });
    asee::print("process: %d %d\n", first, second);
}

void onFinish(int first, int second, void *context) {
    LiveObjects<CalibrationWidget>::with(context, [](CalibrationWidget &screen) { screen.finishPoint(); });
    asee::print("finish: %d %d\n", first, second);
}

/// The number of bytes written; -1 when the file is as it was before.
qint64 save(const QString &path, const char *bytes, qint64 size) {
    QSaveFile file(path);
    if (whole_file::open(file) && whole_file::write(file, bytes, size) && file.commit())
        return size;
    qCWarning(lcAsee).noquote() << "The calibration was not saved to" << QDir::toNativeSeparators(path) + ":"
                                << file.errorString();
    return -1;
}

}  // namespace

std::atomic<bool> CalibWorker::isBusy_{false};

CalibWorker::CalibWorker(std::shared_ptr<CalibrationGate> gate, CalibrationPace pace)
    : gate_(std::move(gate)), pace_(pace) {}

/// False when the screen is gone; another one may stand at its address.
template <typename Use>
bool CalibWorker::withScreen(Use use) const {
    bool isThere = false;
    LiveObjects<CalibrationWidget>::with(screen_, [&](CalibrationWidget &screen) {
        isThere = screen.isRunBy(this);
        if (isThere)
            use(screen);
    });
    return isThere;
}

/// Has the screen change as soon as its thread gets to it.
template <typename Change>
bool CalibWorker::show(Change change) const {
    return withScreen([change](CalibrationWidget &screen) {
        QMetaObject::invokeMethod(
            &screen, [&screen, change] { change(screen); }, Qt::QueuedConnection);
    });
}

void CalibWorker::process(CalibrationWidget *calibUI) {
    isBusy_ = true;
    const auto atEnd = qScopeGuard([] { isBusy_ = false; });
    screen_ = calibUI;
    withScreen([this](CalibrationWidget &ui) { dataFolder_ = ui.dataFolder(); });

    show([](CalibrationWidget &ui) { ui.showCalibration(); });
    printed("_7i_start_calibration", asee::_7i_start_calibration(pointCount));
    if (runPoints())
        compute();
    else
        cancel();
    show([](CalibrationWidget &ui) { ui.showIntro(); });
}

bool CalibWorker::runPoints() {
    const auto &points = calibration_layout::points;
    for (int k = firstPoint; k < firstPoint + pointCount; ++k) {
        const FractionPoint point = points[static_cast<std::size_t>(k % pointCount)];
        const FractionPoint next = points[static_cast<std::size_t>((k + 1) % pointCount)];
        show([point, next](CalibrationWidget &ui) { ui.showPoint(point, next); });
        if (!runPoint(k - firstPoint + 1, point) || !movePoint())
            return false;
    }
    return true;
}

bool CalibWorker::runPoint(int number, FractionPoint point) {
    if (!gate_->pause(pace_.lookAtPoint))
        return false;
    const float xy[] = {point.x, point.y};
    gate_->expectPoint();
    lastPointResult_ = asee::_7i_start_calibration_point(number, xy, onProgress, screen_, onFinish, screen_);
    asee::print("_7i_start_calibration_point: %d %d %0.2f %0.2f\n", lastPointResult_, number,
                static_cast<double>(point.x), static_cast<double>(point.y));
    return gate_->waitForPoint();
}

bool CalibWorker::movePoint() {
    bool goesOn = true;
    for (float value = 0.01F; goesOn && static_cast<double>(value) < 0.3;
         value = static_cast<float>(static_cast<double>(value) + 0.01)) {
        withScreen([value](CalibrationWidget &ui) { Q_EMIT ui.signal_calib_move_point(value); });
        goesOn = gate_->pause(pace_.moveStep);
    }
    return goesOn;
}

void CalibWorker::cancel() {
    printed("_7i_cancel_calibration", asee::_7i_cancel_calibration());
    printed("_7i_complete_calibration", asee::_7i_complete_calibration());
}

void CalibWorker::compute() {
    Coefficients coefficients{};
    const int result = printed("_7i_compute_calibration", asee::_7i_compute_calibration(coefficients.data()));
    asee::_7i_complete_calibration();
    // The last point's result stands in for this call's: that is intended.
    printed("_7i_complete_calibration", lastPointResult_);
    float left = 0;
    float right = 0;
    asee::_7i_get_calibration_score(&left, &right);
    asee::print("%0.2f %0.2f\n", static_cast<double>(left), static_cast<double>(right));
    // The program may be ending when the screen is gone.
    if (show([](CalibrationWidget &ui) { ui.setFinished(); }) && result == 0)
        apply(coefficients);
}

void CalibWorker::apply(const Coefficients &coefficients) {
    if (printed("_7i_start_tracking", asee::_7i_start_tracking(coefficients.data())) == 0)
        show([](CalibrationWidget &ui) { ui.setShowGaze(true); });
    const qint64 written = save(dataFolder_ + "coefficient.dat", coefficients.data(), asee::coefficientBytes);
    asee::print("write coefficient file: %lld\n", static_cast<long long>(written));
}
