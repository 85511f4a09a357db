#include "api/tracker_calls.h"

bool TrackerCalls::queue(const std::function<void(EyetrackerInterface &)> &call) {
    bool isQueued = false;
    const bool isOpen = guard_.use([&] { isQueued = queueFor(tracker_, call); });
    return isOpen && isQueued;
}

bool TrackerCalls::queueFor(EyetrackerInterface *tracker, const std::function<void(EyetrackerInterface &)> &call) {
    if (!tracker)
        return false;
    if (pendingCount_->fetch_add(1) >= maxPendingCalls) {
        pendingCount_->fetch_sub(1);
        return false;
    }
    const auto run = [call, tracker, pendingCount = pendingCount_] {
        pendingCount->fetch_sub(1);
        call(*tracker);
    };
    return QMetaObject::invokeMethod(tracker, run, Qt::AutoConnection);
}
