#pragma once

#include "trackers/asee/asee_sdk.h"
#include "trackers/asee/gaze_record.h"

#include <QObject>
#include <array>
#include <atomic>
#include <chrono>
#include <memory>

class CalibrationGate;
class CalibrationWidget;

/// How long the calibration takes over its steps.
struct CalibrationPace {
    std::chrono::milliseconds lookAtPoint{1500};  ///< before the device is to measure
    std::chrono::milliseconds moveStep{50};       ///< each of the 29 on the way to the next point
};

/// Runs the nine-point calibration against the vendor's library and writes its coefficients.
///
/// Owned by the calibration screen, on whose worker thread it lives. Only a call into the library can hold it up; then
/// it may outlast the screen, which it therefore reaches through LiveObjects alone. All that it shows there goes as
/// queued calls, in order.
class CalibWorker : public QObject {
    Q_OBJECT

public:
    CalibWorker(std::shared_ptr<CalibrationGate> gate, CalibrationPace pace);

    /// Whether a calibration runs, also one whose screen is gone: the library takes one at a time. Any thread.
    [[nodiscard]] static bool isBusy() { return isBusy_; }

public Q_SLOTS:
    /// Runs one calibration, until its end or until the gate is closed.
    void process(CalibrationWidget *calibUI);

private:
    using Coefficients = std::array<char, asee::coefficientBytes>;

    /// False when the calibration was given up.
    [[nodiscard]] bool runPoints();
    [[nodiscard]] bool runPoint(int number, FractionPoint point);
    [[nodiscard]] bool movePoint();
    void cancel();
    void compute();
    void apply(const Coefficients &coefficients);
    template <typename Use>
    bool withScreen(Use use) const;
    template <typename Change>
    bool show(Change change) const;

    static std::atomic<bool> isBusy_;

    const std::shared_ptr<CalibrationGate> gate_;
    const CalibrationPace pace_;
    CalibrationWidget *screen_ = nullptr;
    QString dataFolder_;
    int lastPointResult_ = 0;
};
