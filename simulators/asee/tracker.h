#pragma once

#include "asee/calibration.h"
#include "asee/options.h"
#include "device/person.h"
#include "device/ticker.h"
#include "trackers/asee/asee_sdk.h"

#include <memory>
#include <mutex>
#include <optional>

namespace sim::asee_pro {

/// The aSee Pro tracker behind the library's entry points, each of which has its operation here under its name.
///
/// All operations may be called from any thread, the callbacks' too. Gaze, images and the progress of a calibration
/// point come on a thread each, and no lock is held while calling back. From _7i_start on records tell where the eyes
/// are in the image, which placing them for a calibration needs; gaze comes with _7i_start_tracking.
///
/// There is one, and it is never destroyed, because its threads may live as long as the process.
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
    /// What runs between _7i_start and _7i_stop.
    struct Streams {
        std::unique_ptr<Ticker> gaze;
        std::unique_ptr<Ticker> images;
    };
    class GazeStream;
    class ImageStream;
    class PointRun;

    Tracker() = default;

    [[nodiscard]] Streams startStreams();
    [[nodiscard]] std::unique_ptr<Ticker> endCalibration();
    void pointDone(int number, const TargetMeasurement &measurement);

    Person person_;
    std::mutex mutex_;  // guards what follows
    Options options_;
    bool connected_ = false;
    bool tracking_ = false;
    Receiver<asee::GazeCallback> gazeReceiver_;
    Receiver<asee::ImageCallback> imageReceiver_;
    std::optional<Streams> streams_;
    std::optional<Calibration> calibration_;
    std::unique_ptr<Ticker> point_;
    bool pointRunning_ = false;
    Calibration::Score score_;
};

}  // namespace sim::asee_pro
