#pragma once

#include <QByteArray>
#include <QString>
#include <chrono>
#include <optional>
#include <string>
#include <vector>

/// A marker in a recording.
struct RecordMarker {
    std::chrono::microseconds time{0};  ///< since 1970 UTC
    QString text;
    quint64 number = 0;          ///< of the tracker's newest sample when the marker was set; 0 if there was none
    std::optional<quint64> row;  ///< of that sample in the record file; the first row is 0
};

/// The tables of markers: markers.csv in a journal, and the events file beside a record file. docs/records.md describes
/// both. Any thread.
namespace record_markers {

constexpr char journalHeader[] = "Time_ms,Text,Number,Row\r\n";

/// Returns the marker as it is written to a journal, with the line ending. The text may contain further line breaks.
[[nodiscard]] std::string journalLine(const RecordMarker &marker);

struct Parsed {
    std::vector<RecordMarker> markers;  ///< up to the first damaged one
    bool isDamaged = false;             ///< whether a marker other than the last one is not complete
};

/// Reads the table of a journal. The last marker is skipped if it is not complete.
[[nodiscard]] Parsed parseJournal(const QByteArray &table);

/// Returns the text of the events file of a recording with `rowCount` rows. `firstArrival` is the arrival of its first
/// sample since 1970 UTC.
[[nodiscard]] std::string eventsText(std::vector<RecordMarker> markers,
                                     std::optional<std::chrono::microseconds> firstArrival, quint64 rowCount);

}  // namespace record_markers
