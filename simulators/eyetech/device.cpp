#include "eyetech/device.h"

#include "eyetech/frame_record.h"
#include "eyetech/results.h"

#include <algorithm>
#include <chrono>
#include <thread>

namespace sim::eyetech {

Device::Device(Person *person, Cable *cable) : person_(person), cable_(cable) {}

int Device::start(const Options &options) {
    std::unique_ptr<Ticker> previous;  // ends after the lock: its thread takes it
    const std::lock_guard lock(mutex_);
    if (options.startError != Ok)
        return options.startError;
    if (!lookAtCable())
        return Unplugged;
    if (running_)
        return Ok;
    previous = std::move(ticker_);
    options_ = options;
    running_ = true;
    seen_ = taken_ = 0;
    cable_->deviceStarted();
    ticker_ = std::make_unique<Ticker>(options.rate, [this] { return tick(); });
    return Ok;
}

int Device::stop() {
    std::unique_ptr<Ticker> ending;  // as in start()
    const std::lock_guard lock(mutex_);
    running_ = false;
    changed_.notify_all();
    ending = std::move(ticker_);
    return Ok;
}

int Device::status() {
    const std::lock_guard lock(mutex_);
    if (!lookAtCable())
        return kUnavailable;
    return running_ ? ql_device_running : ql_device_stopped;
}

bool Device::running() {
    return status() == ql_device_running;
}

/// A device that was unplugged does not run any more, also when it is back.
bool Device::lookAtCable() {
    if (cable_->pluggedIn())
        return true;
    running_ = false;
    changed_.notify_all();
    return false;
}

bool Device::tick() {
    const EyeState eyes = person_->now();
    const std::lock_guard lock(mutex_);
    if (!lookAtCable() || !running_)
        return false;
    eyes_ = eyes;
    ++seen_;
    if (calibration_)
        calibration_->observe(eyes);
    changed_.notify_all();
    return true;
}

int Device::frame(int waitMs, QLFrameRecord *record) {
    Shot shot;
    const int result = awaitShot(waitMs, &shot);
    if (result == Ok)
        *record = takePicture(shot);
    return result;
}

int Device::awaitShot(int waitMs, Shot *shot) {
    std::unique_lock lock(mutex_);
    if (const std::chrono::milliseconds block(options_.frameBlocksMs); block.count() > 0) {
        lock.unlock();
        std::this_thread::sleep_for(block);
        lock.lock();
    }
    const auto ready = [this] { return !running_ || seen_ > taken_; };
    if (!changed_.wait_for(lock, std::chrono::milliseconds(std::max(0, waitMs)), ready))
        return Timeout;
    if (!running_)
        return NotRunning;
    taken_ = seen_;
    *shot = {eyes_, options_};
    shot->eyes.left.gaze = eyes_.left.gaze + bias_[0];
    shot->eyes.right.gaze = eyes_.right.gaze + bias_[1];
    return Ok;
}

// The previous picture is really freed: who looks at it too late reads freed memory, which AddressSanitizer tells.
QLFrameRecord Device::takePicture(const Shot &shot) {
    const std::lock_guard lock(pictureMutex_);
    const environment::Size size = shot.options.image;
    if (!camera_ || camera_->width() != size.width || camera_->height() != size.height)
        camera_ = std::make_unique<Camera>(size.width, size.height, person_->setup());
    picture_.reset();
    picture_.reset(new unsigned char[camera_->bytes()]);
    camera_->paint(shot.eyes, picture_.get());
    const environment::Size told = shot.options.toldImage.value_or(size);
    const unsigned char *pixels = shot.options.has("null-image") ? nullptr : picture_.get();
    return makeFrameRecord(shot.eyes, {pixels, told.width, told.height}, size.width, size.height);
}

void Device::calibrate(const std::shared_ptr<Calibration> &calibration) {
    const std::lock_guard lock(mutex_);
    calibration_ = calibration;
}

void Device::applyBias(const Calibration::Eyes &bias) {
    const std::lock_guard lock(mutex_);
    bias_ = bias;
}

}  // namespace sim::eyetech
