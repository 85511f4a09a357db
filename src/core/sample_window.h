#pragma once

#include "core/eye_tracking_sample.h"

#include <QList>
#include <deque>

/// The samples of the last while, oldest first. Its owner guards it.
///
/// A sample's age is what the samples' own stamps say. Where they say that no time has passed (a device that stamps
/// all samples alike, a clock that was set back) it is the time since the sample arrived: else the window would never
/// let go of it.
///
/// samples() hands out implicitly shared lists that other threads read after the guard is released. Such a list is
/// never changed in place, only let go of: Qt's check whether a list is shared does not order memory, so it must not
/// decide whether this thread may write into it.
class SampleWindow {
public:
    explicit SampleWindow(qint32 lengthMs) : lengthMs_(lengthMs) {}

    /// Appends the sample, which arrived at `arrivalMs` of any clock that runs forward, and drops those that are more
    /// than the window's length older. Returns the list that was handed out before, for the caller to let go of when
    /// the guard is released.
    [[nodiscard]] QList<EyeTrackingSample> add(const EyeTrackingSample &sample, qint64 arrivalMs);

    /// A shallow copy as long as no sample comes in between.
    [[nodiscard]] QList<EyeTrackingSample> samples();

    /// The newest sample; all zero before the first.
    [[nodiscard]] EyeTrackingSample last() const;

private:
    struct Entry {
        EyeTrackingSample sample;
        qint64 arrivalMs = 0;

        [[nodiscard]] qint64 ageBeside(const Entry &newest) const;
    };

    qint32 lengthMs_;
    std::deque<Entry> samples_;
    QList<EyeTrackingSample> handedOut_;  ///< the same samples as a list; empty until asked for
};
