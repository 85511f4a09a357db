#include "core/sample_window.h"

#include <utility>

namespace {

qint64 ageOf(const EyeTrackingSample &sample, qint64 now) {
    // Differences wrap rather than overflow, whatever a device's clock says.
    return static_cast<qint64>(static_cast<quint64>(now) - static_cast<quint64>(sample.timestamp));
}

}  // namespace

QList<EyeTrackingSample> SampleWindow::add(const EyeTrackingSample &sample) {
    while (!samples_.empty() && ageOf(samples_.front(), sample.timestamp) > lengthMs_)
        samples_.pop_front();
    samples_.push_back(sample);
    return std::exchange(handedOut_, {});
}

QList<EyeTrackingSample> SampleWindow::samples() {
    if (handedOut_.isEmpty()) {
        handedOut_.reserve(static_cast<int>(samples_.size()));
        for (const EyeTrackingSample &sample : samples_)
            handedOut_.append(sample);
    }
    return handedOut_;
}

EyeTrackingSample SampleWindow::last() const {
    return samples_.empty() ? EyeTrackingSample() : samples_.back();
}
