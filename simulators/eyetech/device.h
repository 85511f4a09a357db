#pragma once

#include "device/camera.h"
#include "device/person.h"
#include "device/ticker.h"
#include "eyetech/cable.h"
#include "eyetech/calibration.h"
#include "eyetech/options.h"
#include "eyetech/settings.h"
#include "trackers/eyetech/quicklink2.h"

#include <condition_variable>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>

namespace sim::eyetech {

/// One tracker. Looks at the person on a thread of its own while it runs; a picture is painted only for a frame that
/// somebody takes, by the one who takes it. Callable from any thread.
class Device {
public:
    /// The two outlive the device.
    Device(Person *person, Cable *cable);

    int start(const Options &options);
    int stop();
    /// As QLDevice_GetStatus tells it.
    int status();

    /// Waits for a frame that nobody has taken. Its image is gone with the next frame.
    int frame(int waitMs, QLFrameRecord *record);

    /// Shows what it sees to `calibration` from now on.
    void calibrate(const std::shared_ptr<Calibration> &calibration);
    void applyBias(const Calibration::Eyes &bias);
    [[nodiscard]] bool running();

private:
    struct Shot {
        EyeState eyes;
        Options options;
    };

    bool tick();
    bool lookAtCable();
    int awaitShot(int waitMs, Shot *shot);
    QLFrameRecord takePicture(const Shot &shot);

    Person *person_;
    Cable *cable_;

    std::mutex mutex_;  // guards what follows
    std::condition_variable changed_;
    Options options_;
    bool running_ = false;
    std::unique_ptr<Ticker> ticker_;
    EyeState eyes_;
    std::int64_t seen_ = 0;   // frames since the start
    std::int64_t taken_ = 0;  // the latest one that was taken
    std::shared_ptr<Calibration> calibration_;
    Calibration::Eyes bias_;

    std::mutex pictureMutex_;  // guards what follows
    std::unique_ptr<Camera> camera_;
    std::unique_ptr<unsigned char[]> picture_;
};

}  // namespace sim::eyetech
