#include "trackers/asee/asee_calibration_sequence.h"

#include "toolkit/base/file_utilities.h"
#include "trackers/asee/asee_calibration_gate.h"
#include "trackers/asee/asee_calibration_layout.h"
#include "trackers/asee/asee_calibration_screen.h"
#include "trackers/asee/asee_library.h"
#include "trackers/asee/asee_live_objects.h"
#include "trackers/asee/asee_log.h"

#include <QDir>
#include <QSaveFile>
#include <QScopeGuard>
#include <utility>

namespace {

namespace layout = asee::calibration_layout;

using asee::FractionPoint;

constexpr int pointCount = static_cast<int>(layout::points.size());
constexpr int firstPoint = 4;  // the centre

/// Prints the result of a function of the library, and returns it.
int printed(const char *function, int result) {
    asee::print("%s: %d\n", function, result);
    return result;
}

// Callbacks. The library calls them on its own thread, and may do so after the screen was destroyed.

void onProgress(int first, int second, void *context) {
    asee::LiveObjects<CalibrationWidget>::with(
        context, [second](CalibrationWidget &screen) { Q_EMIT screen.signal_calib_progress(second); });
    asee::print("process: %d %d\n", first, second);
}

void onFinish(int first, int second, void *context) {
    asee::LiveObjects<CalibrationWidget>::with(context, [](CalibrationWidget &screen) { screen.finishPoint(); });
    asee::print("finish: %d %d\n", first, second);
}

/// Returns the number of bytes written, or -1 after an error, which leaves the file unchanged.
qint64 save(const QString &path, const char *bytes, qint64 size) {
    QSaveFile file(path);
    if (FileUtilities::openUnbuffered(file) && FileUtilities::writeAll(file, bytes, size) && file.commit())
        return size;
    qCWarning(lcAsee).noquote() << "Cannot save the calibration to" << QDir::toNativeSeparators(path) + ":"
                                << file.errorString();
    return -1;
}

}  // namespace

std::atomic<bool> CalibWorker::isBusy_{false};

CalibWorker::CalibWorker(std::shared_ptr<asee::CalibrationGate> gate, asee::CalibrationPace pace)
    : gate_(std::move(gate)), pace_(pace) {}

/// Returns false if the screen was destroyed. Checks the worker, because a newer screen may have the same address.
template <typename Use>
bool CalibWorker::withScreen(Use use) const {
    bool exists = false;
    asee::LiveObjects<CalibrationWidget>::with(screen_, [&](CalibrationWidget &screen) {
        exists = screen.isRunBy(this);
        if (exists)
            use(screen);
    });
    return exists;
}

/// Queues a change of the screen to the screen's thread.
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
    printed("_7i_start_calibration", asee_sdk::_7i_start_calibration(pointCount));
    if (runPoints())
        compute();
    else
        cancel();
    show([](CalibrationWidget &ui) { ui.showIntro(); });
}

bool CalibWorker::runPoints() {
    for (int k = firstPoint; k < firstPoint + pointCount; ++k) {
        const FractionPoint point = layout::points[static_cast<std::size_t>(k % pointCount)];
        const FractionPoint next = layout::points[static_cast<std::size_t>((k + 1) % pointCount)];
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
    lastPointResult_ = asee_sdk::_7i_start_calibration_point(number, xy, onProgress, screen_, onFinish, screen_);
    asee::print("_7i_start_calibration_point: %d %d %0.2f %0.2f\n", lastPointResult_, number,
                static_cast<double>(point.x), static_cast<double>(point.y));
    return gate_->waitForPoint();
}

bool CalibWorker::movePoint() {
    bool continues = true;
    for (float value = 0.01F; continues && static_cast<double>(value) < 0.3;
         value = static_cast<float>(static_cast<double>(value) + 0.01)) {
        withScreen([value](CalibrationWidget &ui) { Q_EMIT ui.signal_calib_move_point(value); });
        continues = gate_->pause(pace_.moveStep);
    }
    return continues;
}

void CalibWorker::cancel() {
    printed("_7i_cancel_calibration", asee_sdk::_7i_cancel_calibration());
    printed("_7i_complete_calibration", asee_sdk::_7i_complete_calibration());
}

void CalibWorker::compute() {
    Coefficients coefficients{};
    const int result = printed("_7i_compute_calibration", asee_sdk::_7i_compute_calibration(coefficients.data()));
    asee_sdk::_7i_complete_calibration();
    // Prints the result of the last point, not of _7i_complete_calibration(): that is intended.
    printed("_7i_complete_calibration", lastPointResult_);
    float left = 0;
    float right = 0;
    asee_sdk::_7i_get_calibration_score(&left, &right);
    asee::print("%0.2f %0.2f\n", static_cast<double>(left), static_cast<double>(right));
    // If the screen was destroyed, the program may be exiting, so nothing is saved.
    if (show([](CalibrationWidget &ui) { ui.setFinished(); }) && result == 0)
        apply(coefficients);
}

void CalibWorker::apply(const Coefficients &coefficients) {
    if (printed("_7i_start_tracking", asee_sdk::_7i_start_tracking(coefficients.data())) == 0)
        show([](CalibrationWidget &ui) { ui.setShowGaze(true); });
    const qint64 written = save(dataFolder_ + "coefficient.dat", coefficients.data(), asee_sdk::coefficientBytes);
    asee::print("write coefficient file: %lld\n", static_cast<long long>(written));
}
