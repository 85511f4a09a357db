#include "core/sample_numbers.h"

#include <algorithm>
#include <atomic>
#include <iterator>

namespace {

std::atomic<quint64> newestNumber{0};

}  // namespace

quint64 SampleNumbers::take() {
    const quint64 number = ++newestNumber;
    if (runs_.empty() || number != runs_.back().first + (count_ - runs_.back().countBefore))
        runs_.push_back({number, count_});
    if (runs_.size() > maxRunCount)
        runs_.pop_front();
    ++count_;
    return number;
}

std::optional<quint64> SampleNumbers::countUpTo(quint64 number) const {
    const auto isBefore = [](quint64 value, const Run &run) { return value < run.first; };
    const auto next = std::upper_bound(runs_.begin(), runs_.end(), number, isBefore);
    const quint64 countBeforeNext = next == runs_.end() ? count_ : next->countBefore;
    if (next == runs_.begin())
        return countBeforeNext == 0 ? std::optional<quint64>(0) : std::nullopt;
    const Run &run = *std::prev(next);
    return std::min(run.countBefore + (number - run.first) + 1, countBeforeNext);
}
