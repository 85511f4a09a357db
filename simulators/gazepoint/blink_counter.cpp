#include "gazepoint/blink_counter.h"

namespace sim::gazepoint {

namespace {

constexpr double minute_s = 60;
constexpr double maxBlink_s = 0.5;  // a longer loss is not a blink

}  // namespace

Blink BlinkCounter::add(double seconds, bool anyEyeSeen) {
    Blink blink;
    if (!anyEyeSeen && !closed_) {
        closedSince_s_ = seconds;
        ++lastId_;
    } else if (anyEyeSeen && closed_ && seconds - closedSince_s_ <= maxBlink_s) {
        blink.duration_s = seconds - closedSince_s_;
        recentEnds_s_.push_back(seconds);
    }
    closed_ = !anyEyeSeen;
    while (!recentEnds_s_.empty() && recentEnds_s_.front() < seconds - minute_s)
        recentEnds_s_.pop_front();
    blink.id = closed_ ? lastId_ : 0;
    blink.perMinute = static_cast<int>(recentEnds_s_.size());
    return blink;
}

}  // namespace sim::gazepoint
