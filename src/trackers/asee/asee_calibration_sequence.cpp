#include "trackers/asee/asee_calibration_sequence.h"

#include "core/guarded.h"
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
#include <list>
#include <utility>

namespace {

namespace layout = asee::calibration_layout;

using asee::CalibrationOutcome;
using asee::FractionPoint;
using Failure = CalibrationOutcome::Failure;

constexpr int pointCount = static_cast<int>(layout::points.size());
constexpr int firstPoint = 4;  // the centre

/// Prints the result of a function of the library, and returns it.
int printed(const char *function, int result) {
    asee::print("%s: %d\n", function, result);
    return result;
}

/// Prints and returns the scores of the calibration. Returns no scores if the library has none.
std::optional<CalibrationOutcome::Scores> readScores() {
    CalibrationOutcome::Scores scores{0, 0};
    const int result = asee_sdk::_7i_get_calibration_score(&scores.left, &scores.right);
    asee::print("%0.2f %0.2f\n", static_cast<double>(scores.left), static_cast<double>(scores.right));
    return result == 0 ? std::optional(scores) : std::nullopt;
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

/// The measurement of one point. Its callbacks have an effect only during the lifetime of this object.
class CalibWorker::Measurement {
public:
    explicit Measurement(const CalibWorker &worker) : token_(newToken(worker)) {
        asee::LiveObjects<Token>::add(token_);
    }
    ~Measurement() { asee::LiveObjects<Token>::remove(token_); }
    Q_DISABLE_COPY(Measurement)

    /// Returns the context of the callbacks.
    [[nodiscard]] void *context() const { return token_; }

    // Callbacks. The library calls them on its own thread, and may do so after the measurement has ended.

    static void onProgress(int first, int second, void *context) {
        asee::LiveObjects<Token>::with(context, [second](const Token &token) {
            token.worker.withScreen(
                [second](CalibrationWidget &screen) { Q_EMIT screen.signal_calib_progress(second); });
        });
        asee::print("process: %d %d\n", first, second);
    }

    static void onFinish(int first, int second, void *context) {
        asee::LiveObjects<Token>::with(context, [](const Token &token) { token.worker.gate_->finishPoint(); });
        asee::print("finish: %d %d\n", first, second);
    }

private:
    struct Token {
        const CalibWorker &worker;
    };

    /// Tokens are never destroyed. If an address were used again, a late callback of an earlier point would finish a
    /// newer point. Each calibration adds nine tokens.
    static Token *newToken(const CalibWorker &worker) {
        static auto &tokens = *new Guarded<std::list<Token>>;
        return tokens.with([&worker](std::list<Token> &all) { return &all.emplace_back(Token{worker}); });
    }

    Token *const token_;
};

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

    outcome_.reset();
    show([](CalibrationWidget &ui) { ui.showCalibration(); });
    startResult_ = printed("_7i_start_calibration", asee_sdk::_7i_start_calibration(pointCount));
    if (runPoints())
        compute();
    else
        cancel();
    if (outcome_)
        show([outcome = *outcome_](CalibrationWidget &ui) { ui.setOutcome(outcome); });
    show([](CalibrationWidget &ui) { ui.showIntro(); });
}

bool CalibWorker::runPoints() {
    for (int k = firstPoint; k < firstPoint + pointCount; ++k) {
        const int number = k - firstPoint + 1;
        const FractionPoint point = layout::points[static_cast<std::size_t>(k % pointCount)];
        const FractionPoint next = layout::points[static_cast<std::size_t>((k + 1) % pointCount)];
        show([number, point, next](CalibrationWidget &ui) { ui.showPoint(number, point, next); });
        if (!runPoint(number, point) || !movePoint())
            return false;
    }
    return true;
}

bool CalibWorker::runPoint(int number, FractionPoint point) {
    if (!gate_->pause(pace_.lookAtPoint))
        return false;
    const float xy[] = {point.x, point.y};
    gate_->expectPoint();
    const Measurement measurement(*this);
    lastPointResult_ = asee_sdk::_7i_start_calibration_point(number, xy, Measurement::onProgress, measurement.context(),
                                                             Measurement::onFinish, measurement.context());
    asee::print("_7i_start_calibration_point: %d %d %0.2f %0.2f\n", lastPointResult_, number,
                static_cast<double>(point.x), static_cast<double>(point.y));
    if (lastPointResult_ == 0)
        return gate_->waitForPoint();
    failAtPoint(number);
    return false;
}

/// Reports the failure to start the calibration instead, if there was one, because it is the reason of the refusal.
void CalibWorker::failAtPoint(int number) {
    if (startResult_ != 0)
        fail(Failure::Start, "_7i_start_calibration", startResult_);
    else
        fail(Failure::Point, QString("_7i_start_calibration_point, point %1,").arg(number), lastPointResult_);
    outcome_->point = number;
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
    const std::optional<CalibrationOutcome::Scores> scores = readScores();
    // If the screen was destroyed, the program may be exiting, so nothing is saved.
    if (!show([](CalibrationWidget &ui) { ui.setFinished(); }) || gate_->isCancelled())
        return;
    if (result != 0) {
        fail(Failure::Computation, "_7i_compute_calibration", result);
        return;
    }
    outcome_.emplace();
    outcome_->scores = scores;
    apply(coefficients);
}

void CalibWorker::apply(const Coefficients &coefficients) {
    const int result = printed("_7i_start_tracking", asee_sdk::_7i_start_tracking(coefficients.data()));
    if (result == 0)
        show([](CalibrationWidget &ui) { ui.setShowGaze(true); });
    const qint64 written = save(dataFolder_ + "coefficient.dat", coefficients.data(), asee_sdk::coefficientBytes);
    asee::print("write coefficient file: %lld\n", static_cast<long long>(written));
    if (result != 0)
        fail(Failure::Tracking, "_7i_start_tracking", result);
    else if (written < 0)
        outcome_->failure = Failure::Saving;  // save() has logged the reason
}

void CalibWorker::fail(Failure failure, const QString &failedCall, int error) {
    qCWarning(lcAsee).noquote() << "The calibration has failed:" << failedCall << "returned" << error;
    if (!outcome_)
        outcome_.emplace();
    outcome_->failure = failure;
    outcome_->error = error;
}
