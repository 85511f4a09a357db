#pragma once

#include "trackers/asee/asee_calibration_outcome.h"
#include "trackers/asee/asee_record_reader.h"
#include "trackers/asee/sdk/asee_sdk.h"

#include <QObject>
#include <array>
#include <atomic>
#include <chrono>
#include <memory>
#include <optional>

class CalibrationWidget;

namespace asee {

class CalibrationGate;

/// The durations of a calibration's steps, and the timeout of its end.
struct CalibrationPace {
    std::chrono::milliseconds lookAtPoint{1500};  ///< before the device measures the point
    std::chrono::milliseconds moveStep{50};       ///< for each of the 29 steps to the next point
    std::chrono::milliseconds endTimeout{800};    ///< for the worker's end, in case a call of the library blocks
};

}  // namespace asee

/// Runs the nine-point calibration with the vendor's library, and saves its coefficients.
///
/// Owned by the calibration screen, and lives on the screen's worker thread. If a call of the library blocks, the
/// worker outlives the screen, so it accesses the screen only through LiveObjects. It changes the screen with queued
/// calls.
class CalibWorker : public QObject {
    Q_OBJECT

public:
    CalibWorker(std::shared_ptr<asee::CalibrationGate> gate, asee::CalibrationPace pace);

    /// Returns whether a calibration of any screen is running: the library runs only one at a time. That screen may
    /// already be destroyed. Callable from any thread.
    [[nodiscard]] static bool isBusy() { return isBusy_; }

public Q_SLOTS:
    /// Runs a calibration, and returns when it is finished, the library refuses a point, or the gate is cancelled.
    /// Unless it was cancelled, passes its outcome to the screen.
    void process(CalibrationWidget *calibUI);

private:
    class Measurement;
    using Coefficients = std::array<char, asee_sdk::coefficientBytes>;

    // Return false if the calibration was cancelled or has failed.
    [[nodiscard]] bool runPoints();
    [[nodiscard]] bool runPoint(int number, asee::FractionPoint point);
    [[nodiscard]] bool movePoint();

    void failAtPoint(int number);
    void cancel();
    void compute();
    void apply(const Coefficients &coefficients);
    /// Sets the outcome, and logs it. `failedCall` is the function of the library with details.
    void fail(asee::CalibrationOutcome::Failure failure, const QString &failedCall, int error);
    template <typename Use>
    bool withScreen(Use use) const;
    template <typename Change>
    bool show(Change change) const;

    static std::atomic<bool> isBusy_;

    const std::shared_ptr<asee::CalibrationGate> gate_;
    const asee::CalibrationPace pace_;
    CalibrationWidget *screen_ = nullptr;
    QString dataFolder_;
    int startResult_ = 0;
    int lastPointResult_ = 0;
    std::optional<asee::CalibrationOutcome> outcome_;  ///< empty until the calibration has ended or failed
};
