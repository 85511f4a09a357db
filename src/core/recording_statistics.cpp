#include "core/recording_statistics.h"

#include "toolkit/table/csv_text.h"
#include "toolkit/table/numeric_rows.h"

#include <algorithm>

namespace {

/// Columns of a record file, which never change. "Valid" is before "X", and "Y" after it.
constexpr int validColumn = 2;
constexpr int xColumn = validColumn + 1;
constexpr int rightXColumn = 15;

double toMs(std::chrono::microseconds duration) {
    return std::chrono::duration<double, std::milli>(duration).count();
}

}  // namespace

RecordingStatistics::Row RecordingStatistics::rowOf(const NumericRows &rows, std::size_t index) {
    return {rows.number(index, validColumn) != 0,
            {rows.number(index, xColumn), rows.number(index, xColumn + 1)},
            {rows.number(index, rightXColumn), rows.number(index, rightXColumn + 1)}};
}

RecordingStatistics::Row RecordingStatistics::parseRow(std::string_view line) {
    csv::LineNumbers cells(line, ',');
    Row row;
    cells.skip(validColumn);
    row.valid = cells.next() != 0;
    row.combined.x = cells.next();
    row.combined.y = cells.next();
    cells.skip(rightXColumn - (xColumn + 2));
    row.right.x = cells.next();
    row.right.y = cells.next();
    return row;
}

void RecordingStatistics::add(const Row &row, const std::optional<Origin> &origin) {
    ++count_;
    validCount_ += row.valid;
    if (origin)
        addOrigin(*origin);
    if (row.valid && (!origin || origin->r_valid))
        rightEye_.add(row.combined, row.right);
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
