#include "app/tracker_monitor.h"

#include "core/eyetracker_interface.h"
#include "core/recording_statistics.h"

#include <algorithm>

namespace {

using std::chrono::duration_cast;

constexpr std::chrono::milliseconds windowLength(EyetrackerInterface::sampleWindowMs);

RecordingStatistics::Origin originOf(const NumberedSample &entry) {
    return {duration_cast<std::chrono::microseconds>(entry.arrival.time_since_epoch()), entry.sample.l_valid,
            entry.sample.r_valid};
}

}  // namespace

TrackerMonitor::TrackerMonitor(const EyetrackerInterface &tracker)
    : tracker_(&tracker), wasConnected_(tracker.isConnected()) {}

void TrackerMonitor::connectionChanged() {
    start_ = Clock::now();
    wasConnected_ = wasConnected_ || tracker_->isConnected();
}

TrackerStatus TrackerMonitor::status() const {
    TrackerStatus status;
    status.connected = tracker_->isConnected();
    if (!status.connected) {
        status.problem = wasConnected_ ? StatusTexts::tr("connection lost") : tracker_->connectionProblem();
        return status;
    }
    const Clock::time_point now = Clock::now();
    const Clock::time_point first = std::max(start_, now - windowLength);
    RecordingStatistics statistics;
    for (const NumberedSample &entry : tracker_->samplesSince(0).samples) {
        if (entry.arrival >= first)
            statistics.add({entry.sample.valid, {}, {}}, originOf(entry));
    }
    status.silence =
        duration_cast<std::chrono::milliseconds>(now - std::max(start_, tracker_->lastNumberedSample().arrival));
    status.rateHz = statistics.rateHz();
    status.validShare = statistics.validShare();
    return status;
}
