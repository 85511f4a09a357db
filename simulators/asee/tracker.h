#pragma once

#include "asee/calibration.h"
#include "asee/options.h"
#include "device/person.h"
#include "device/ticker.h"
#include "trackers/asee/sdk/asee_sdk.h"

#include <memory>
#include <mutex>
#include <optional>

namespace sim::asee_pro {

/// The simulated aSee Pro tracker. Each entry point of the library calls the function of the same name.
///
/// Any thread may call the functions, also from within a callback. Gaze, images and the progress of a calibration point
/// are reported on separate threads. No lock is held during a callback. After _7i_start, records contain the positions
/// of the eyes in the image. After _7i_start_tracking, they also contain the gaze.
///
/// The only instance is never destroyed, because its threads may run until the process ends.
class Tracker {
public:
    static Tracker &instance();

#define OCELA_DECLARE(name, parameters, arguments) int name parameters;
    OCELA_ASEE_FUNCTIONS(OCELA_DECLARE)
#undef OCELA_DECLARE

private:
    template <typename Callback>
    struct Receiver {
        Callback callback = nullptr;
        void *context = nullptr;
    };
    /// The threads that run between _7i_start and _7i_stop.
    struct Streams {
        std::unique_ptr<Ticker> gaze;
        std::unique_ptr<Ticker> images;
    };
    class GazeStream;
    class ImageStream;
    class PointRun;

    Tracker() = default;

    [[nodiscard]] Streams startStreams();
    /// Returns the thread of the running point. The caller destroys it after releasing the lock.
    [[nodiscard]] std::unique_ptr<Ticker> endCalibration();
    void finishPoint(int number, const TargetMeasurement &measurement);

    Person person_;
    std::mutex mutex_;  // guards the members below
    Options options_;
    bool connected_ = false;
    bool tracking_ = false;
    Receiver<asee_sdk::GazeCallback> gazeReceiver_;
    Receiver<asee_sdk::ImageCallback> imageReceiver_;
    std::optional<Streams> streams_;
    std::optional<Calibration> calibration_;
    std::unique_ptr<Ticker> point_;
    bool pointRunning_ = false;
    Calibration::Score score_;
};

}  // namespace sim::asee_pro
