#include "core/recording_statistics.h"

#include <algorithm>

namespace {

/// The columns of a record file, which never change.
enum Column : std::size_t { valid = 2, x = 3, y = 4, rightX = 15, rightY = 16 };

double toMs(std::chrono::microseconds duration) {
    return std::chrono::duration<double, std::milli>(duration).count();
}

}  // namespace

void RecordingStatistics::add(const std::vector<double> &row, const std::optional<Origin> &origin) {
    const bool isValid = row.at(Column::valid) != 0;
    ++count_;
    validCount_ += isValid;
    if (origin)
        addOrigin(*origin);
    if (isValid && (!origin || origin->r_valid))
        rightEye_.add({row.at(Column::x), row.at(Column::y)}, {row.at(Column::rightX), row.at(Column::rightY)});
}

void RecordingStatistics::addOrigin(const Origin &origin) {
    if (originCount_ == 0)
        firstArrival_ = lastArrival_ = origin.arrival;
    ++originCount_;
    leftValidCount_ += origin.l_valid;
    rightValidCount_ += origin.r_valid;
    longestGap_ = std::max(longestGap_, origin.arrival - lastArrival_);
    lastArrival_ = origin.arrival;
}

std::optional<double> RecordingStatistics::durationMs() const {
    return originCount_ > 0 ? std::optional(toMs(lastArrival_ - firstArrival_)) : std::nullopt;
}

std::optional<double> RecordingStatistics::rateHz() const {
    const std::chrono::duration<double> duration = lastArrival_ - firstArrival_;
    return duration.count() > 0 ? std::optional(static_cast<double>(originCount_ - 1) / duration.count())
                                : std::nullopt;
}

std::optional<double> RecordingStatistics::longestGapMs() const {
    return originCount_ > 1 ? std::optional(toMs(longestGap_)) : std::nullopt;
}

std::optional<double> RecordingStatistics::share(quint64 part, quint64 whole) {
    return whole > 0 ? std::optional(static_cast<double>(part) / static_cast<double>(whole)) : std::nullopt;
}
