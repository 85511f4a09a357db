#include "eyetech/cable.h"

#include <filesystem>
#include <utility>

namespace sim::eyetech {

namespace {

double secondsSince(std::chrono::steady_clock::time_point moment) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - moment).count();
}

}  // namespace

void Cable::setOptions(const Options &options) {
    const std::lock_guard lock(mutex_);
    options_ = options;
}

void Cable::deviceStarted() {
    const std::lock_guard lock(mutex_);
    if (!started_)
        started_ = Clock::now();
}

bool Cable::pluggedIn() {
    const std::lock_guard lock(mutex_);
    const bool isPluggedIn = isConnected();
    if (!std::exchange(wasPluggedIn_, isPluggedIn) && isPluggedIn)
        ++replugCount_;
    return isPluggedIn;
}

int Cable::replugCount() {
    (void)pluggedIn();
    const std::lock_guard lock(mutex_);
    return replugCount_;
}

bool Cable::isConnected() const {
    if (secondsSince(loaded_) < options_.appearAfter_s || unpluggedByTime())
        return false;
    std::error_code error;
    return options_.unpluggedFile.empty() || !std::filesystem::exists(options_.unpluggedFile, error);
}

bool Cable::unpluggedByTime() const {
    if (!started_ || options_.unplugAfter_s == 0)
        return false;
    const double unplugged_s = secondsSince(*started_) - options_.unplugAfter_s;
    return unplugged_s >= 0 && (options_.replugAfter_s == 0 || unplugged_s < options_.replugAfter_s);
}

}  // namespace sim::eyetech
