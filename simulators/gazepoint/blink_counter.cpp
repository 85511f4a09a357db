#include "gazepoint/blink_counter.h"

namespace sim::gazepoint {

namespace {

constexpr double kMinute = 60;
constexpr double kLongestBlink = 0.5;  // whoever is away for longer did not blink

}  // namespace

Blink BlinkCounter::add(double seconds, bool anyEyeSeen) {
    Blink blink;
    if (!anyEyeSeen && !closed_) {
        closedSince_ = seconds;
        ++lastId_;
    } else if (anyEyeSeen && closed_ && seconds - closedSince_ <= kLongestBlink) {
        blink.duration = seconds - closedSince_;
        recent_.push_back(seconds);
    }
    closed_ = !anyEyeSeen;
    while (!recent_.empty() && recent_.front() < seconds - kMinute)
        recent_.pop_front();
    blink.id = closed_ ? lastId_ : 0;
    blink.perMinute = static_cast<int>(recent_.size());
    return blink;
}

}  // namespace sim::gazepoint
