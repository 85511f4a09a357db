#include "core/sample_window.h"

#include <algorithm>
#include <utility>

QList<EyeTrackingSample> SampleWindow::add(const EyeTrackingSample &sample,
                                           std::chrono::steady_clock::time_point arrival) {
    NumberedSample newest{numbers_.take(), arrival, sample};
    // If two threads deliver at the same time, the later arrival may be added first.
    if (!samples_.empty())
        newest.arrival = std::max(arrival, samples_.back().arrival);
    while (!samples_.empty() && isOutdated(samples_.front(), newest))
        samples_.pop_front();
    samples_.push_back(newest);
    return std::exchange(sharedList_, {});
}

bool SampleWindow::isOutdated(const NumberedSample &old, const NumberedSample &newest) const {
    // Unsigned, so that any two timestamps of a device can be subtracted without overflow.
    const auto stampedMs =
        static_cast<qint64>(static_cast<quint64>(newest.sample.timestamp) - static_cast<quint64>(old.sample.timestamp));
    return stampedMs > 0 ? stampedMs > lengthMs_ : newest.arrival - old.arrival > std::chrono::milliseconds(lengthMs_);
}

QList<EyeTrackingSample> SampleWindow::samples() {
    if (sharedList_.isEmpty()) {
        sharedList_.reserve(static_cast<int>(samples_.size()));
        for (const NumberedSample &entry : samples_)
            sharedList_.append(entry.sample);
    }
    return sharedList_;
}

SamplesSince SampleWindow::samplesSince(quint64 number, quint64 last) const {
    // Searches from the end, because most readers ask only for the newest samples.
    const auto after = [this](quint64 value) {
        const auto isUpTo = [value](const NumberedSample &entry) { return entry.number <= value; };
        return std::find_if(samples_.rbegin(), samples_.rend(), isUpTo).base();
    };
    const auto first = after(number);
    SamplesSince result{{first, std::max(first, after(last))}, 0, static_cast<int>(samples_.size())};
    if (first == samples_.begin()) {
        result.missedCount = countBetween(number, last);
        if (result.missedCount)
            *result.missedCount -= result.samples.size();
    }
    return result;
}

std::optional<quint64> SampleWindow::countBetween(quint64 number, quint64 last) const {
    if (number >= last)
        return 0;
    const std::optional<quint64> countBefore = numbers_.countUpTo(number);
    const std::optional<quint64> count = numbers_.countUpTo(last);
    return countBefore && count ? std::make_optional(*count - *countBefore) : std::nullopt;
}

NumberedSample SampleWindow::last() const {
    return samples_.empty() ? NumberedSample() : samples_.back();
}
