#pragma once

#include "core/numbered_sample.h"
#include "core/sample_numbers.h"

#include <QList>
#include <deque>
#include <limits>

/// The samples of the last `lengthMs` milliseconds, oldest first, and their numbers. The owner guards it.
///
/// The age of a sample is the difference of the samples' timestamps. If that difference is not positive (a device that
/// gives all samples the same timestamp, a clock that was set back), the age is the difference of the arrivals.
/// Otherwise the window would grow without limit.
///
/// samples() returns implicitly shared lists that other threads read without the guard. Such a list is never modified,
/// only replaced. QList reads its reference count without memory ordering, so a write after the last other copy was
/// destroyed would be a data race.
class SampleWindow {
public:
    static constexpr quint64 maxNumber = std::numeric_limits<quint64>::max();

    explicit SampleWindow(qint32 lengthMs) : lengthMs_(lengthMs) {}

    /// Numbers and appends a sample, and drops the samples that are more than `lengthMs` older than it.
    ///
    /// Returns the list that samples() returned until now. Destroy the list after the guard is released, because its
    /// destructor takes time.
    [[nodiscard]] QList<EyeTrackingSample> add(const EyeTrackingSample &sample,
                                               std::chrono::steady_clock::time_point arrival);

    /// Returns all samples. Until the next call of add(), all returned lists share their data.
    [[nodiscard]] QList<EyeTrackingSample> samples();

    /// Returns the samples with a number above `number`, up to `last`. See EyetrackerInterface::samplesSince().
    [[nodiscard]] SamplesSince samplesSince(quint64 number, quint64 last = maxNumber) const;

    /// Counts the samples with a number above `number`, up to `last`. See EyetrackerInterface::countBetween().
    [[nodiscard]] std::optional<quint64> countBetween(quint64 number, quint64 last) const;

    /// Returns the newest sample. Before the first sample, all fields are 0.
    [[nodiscard]] NumberedSample last() const;

private:
    [[nodiscard]] bool isOutdated(const NumberedSample &old, const NumberedSample &newest) const;

    qint32 lengthMs_;
    SampleNumbers numbers_;
    std::deque<NumberedSample> samples_;
    QList<EyeTrackingSample> sharedList_;  ///< the same samples; empty until samples() is called
};
