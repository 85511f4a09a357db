#pragma once

#include "device/camera.h"
#include "device/person.h"
#include "device/ticker.h"
#include "eyetech/cable.h"
#include "eyetech/calibration.h"
#include "eyetech/options.h"
#include "eyetech/results.h"
#include "trackers/eyetech/sdk/quicklink2.h"

#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>

namespace sim::eyetech {

/// One tracker. While it runs, a separate thread observes the person. frame() paints the image in the caller's thread,
/// so frames that no program takes need little CPU time. Thread-safe.
class Device {
public:
    /// `person` and `cable` must outlive the device.
    Device(Person &person, Cable &cable);

    [[nodiscard]] int start(const Options &options);
    void stop();
    /// Returns a status of QLDevice_GetStatus.
    [[nodiscard]] int status();

    /// Waits up to `waitMs` for a new frame. The next call frees the image of the frame.
    [[nodiscard]] Answer<quicklink2::QLFrameRecord> frame(int waitMs);

    /// Passes all further samples to `calibration`.
    void calibrate(const std::shared_ptr<Calibration> &calibration);
    void applyBias(const Calibration::Eyes &bias);
    [[nodiscard]] bool running();

private:
    struct Sample {
        EyeState eyes;
        Options options;
    };

    bool tick();
    bool checkCable();
    [[nodiscard]] Answer<Sample> nextSample(int waitMs);
    [[nodiscard]] quicklink2::QLFrameRecord makeFrame(const Sample &sample);

    Person &person_;
    Cable &cable_;

    std::mutex mutex_;  // guards the members up to bias_
    std::condition_variable changed_;
    Options options_;
    bool running_ = false;
    std::unique_ptr<Ticker> ticker_;
    EyeState eyes_;
    std::int64_t lastFrame_ = 0;       // frames since the start
    std::int64_t lastTakenFrame_ = 0;  // number of the last frame that a program took
    std::shared_ptr<Calibration> calibration_;
    Calibration::Eyes bias_;

    std::mutex imageMutex_;  // guards the members below
    std::unique_ptr<Camera> camera_;
    std::unique_ptr<unsigned char[]> image_;
};

}  // namespace sim::eyetech
