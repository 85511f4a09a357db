#include "eyetech/device.h"

#include "eyetech/frame_record.h"

#include <algorithm>
#include <chrono>
#include <thread>

namespace sim::eyetech {

Device::Device(Person &person, Cable &cable) : person_(person), cable_(cable) {}

int Device::start(const Options &options) {
    std::unique_ptr<Ticker> previous;  // destroyed after the lock is released, because its thread takes the lock
    const std::lock_guard lock(mutex_);
    if (options.startError != Ok)
        return options.startError;
    if (!checkCable())
        return Unplugged;
    if (running_)
        return Ok;
    previous = std::move(ticker_);
    options_ = options;
    running_ = true;
    lastFrame_ = lastTakenFrame_ = 0;
    cable_.deviceStarted();
    ticker_ = std::make_unique<Ticker>(options.rateHz, [this] { return tick(); });
    return Ok;
}

void Device::stop() {
    std::unique_ptr<Ticker> previous;  // as in start()
    const std::lock_guard lock(mutex_);
    running_ = false;
    changed_.notify_all();
    previous = std::move(ticker_);
}

int Device::status() {
    const std::lock_guard lock(mutex_);
    if (!checkCable())
        return deviceUnavailable;
    return running_ ? quicklink2::deviceRunning : quicklink2::deviceStopped;
}

bool Device::running() {
    return status() == quicklink2::deviceRunning;
}

/// An unplugged device stops. It must be started again after it is back.
bool Device::checkCable() {
    if (cable_.pluggedIn())
        return true;
    running_ = false;
    changed_.notify_all();
    return false;
}

bool Device::tick() {
    const EyeState eyes = person_.now();
    const std::lock_guard lock(mutex_);
    if (!checkCable() || !running_)
        return false;
    eyes_ = eyes;
    ++lastFrame_;
    if (calibration_)
        calibration_->observe(eyes);
    changed_.notify_all();
    return true;
}

Answer<quicklink2::QLFrameRecord> Device::frame(int waitMs) {
    const Answer<Sample> sample = nextSample(waitMs);
    if (sample.result != Ok)
        return {sample.result};
    return {Ok, makeFrame(sample.value)};
}

Answer<Device::Sample> Device::nextSample(int waitMs) {
    std::unique_lock lock(mutex_);
    if (const std::chrono::milliseconds block(options_.frameBlocksMs); block.count() > 0) {
        lock.unlock();
        std::this_thread::sleep_for(block);
        lock.lock();
    }
    const auto ready = [this] { return !running_ || lastFrame_ > lastTakenFrame_; };
    if (!changed_.wait_for(lock, std::chrono::milliseconds(std::max(0, waitMs)), ready))
        return {Timeout};
    if (!running_)
        return {NotRunning};
    lastTakenFrame_ = lastFrame_;
    Sample sample{eyes_, options_};
    sample.eyes.left.gaze = eyes_.left.gaze + bias_[0];
    sample.eyes.right.gaze = eyes_.right.gaze + bias_[1];
    return {Ok, sample};
}

// Frees the previous image, so that AddressSanitizer detects a program that uses it too late.
quicklink2::QLFrameRecord Device::makeFrame(const Sample &sample) {
    const std::lock_guard lock(imageMutex_);
    const environment::Size size = sample.options.image;
    if (!camera_ || camera_->width() != size.width || camera_->height() != size.height)
        camera_ = std::make_unique<Camera>(size.width, size.height, person_.setup());
    image_.reset();
    image_.reset(new unsigned char[camera_->sizeBytes()]);
    camera_->paint(sample.eyes, image_.get());
    const environment::Size reported = sample.options.reportedImage.value_or(size);
    const unsigned char *pixels = sample.options.has("null-image") ? nullptr : image_.get();
    return makeFrameRecord(sample.eyes, {pixels, reported.width, reported.height}, size);
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
