#include "core/sample_window.h"

#include <utility>

qint64 SampleWindow::Entry::ageBeside(const Entry &newest) const {
    // Differences wrap rather than overflow, whatever a device's clock says.
    const auto stamped =
        static_cast<qint64>(static_cast<quint64>(newest.sample.timestamp) - static_cast<quint64>(sample.timestamp));
    return stamped > 0 ? stamped : newest.arrivalMs - arrivalMs;
}

QList<EyeTrackingSample> SampleWindow::add(const EyeTrackingSample &sample, qint64 arrivalMs) {
    const Entry newest{sample, arrivalMs};
    while (!samples_.empty() && samples_.front().ageBeside(newest) > lengthMs_)
        samples_.pop_front();
    samples_.push_back(newest);
    return std::exchange(handedOut_, {});
}

QList<EyeTrackingSample> SampleWindow::samples() {
    if (handedOut_.isEmpty()) {
        handedOut_.reserve(static_cast<int>(samples_.size()));
        for (const Entry &entry : samples_)
            handedOut_.append(entry.sample);
    }
    return handedOut_;
}

EyeTrackingSample SampleWindow::last() const {
    return samples_.empty() ? EyeTrackingSample() : samples_.back().sample;
}
