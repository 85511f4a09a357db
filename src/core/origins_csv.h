#pragma once

#include "core/arrival_clock.h"
#include "core/eye_tracking_csv.h"
#include "core/recording_statistics.h"

#include <string>
#include <string_view>

/// The table of the samples' origins: samples.csv in a journal, and the samples file beside a record file. It has one
/// line for each row of the recording. docs/records.md describes it. Any thread.
namespace origins_csv {

constexpr char header[] = "Number,Arrival_ms,L_Valid,R_Valid\r\n";

/// Returns the line of a row, with its line ending.
[[nodiscard]] std::string line(const RowOrigin &origin, const ArrivalClock &clock);

/// Reads a line that consists of the numbers of four columns.
[[nodiscard]] RecordingStatistics::Origin parse(std::string_view line);

/// Returns the columns and their units.
[[nodiscard]] const std::vector<RecordColumn> &columns();

}  // namespace origins_csv
