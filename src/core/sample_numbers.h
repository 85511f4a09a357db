#pragma once

#include <QtGlobal>
#include <deque>
#include <optional>

/// The numbers of one tracker's samples. They come from a counter that all trackers of the process share.
///
/// The numbers of one tracker rise, but have gaps where other trackers took numbers. This class remembers them as runs
/// of consecutive numbers, so that the samples between two numbers can be counted after they have left the window. The
/// owner guards it; different objects may be used by different threads at the same time.
class SampleNumbers {
public:
    /// Limits the memory to 160 KB. Two trackers that deliver alternately start a run with every sample.
    static constexpr std::size_t maxRunCount = 10'000;

    /// Returns the next number of the process.
    [[nodiscard]] quint64 take();

    /// Returns how many of the numbers that were taken from this object are `number` or lower. Returns nothing if
    /// `number` is before the oldest stored run, and older runs have been dropped.
    [[nodiscard]] std::optional<quint64> countUpTo(quint64 number) const;

private:
    struct Run {
        quint64 first = 0;
        quint64 countBefore = 0;  ///< numbers taken before this run
    };

    quint64 count_ = 0;
    std::deque<Run> runs_;
};
