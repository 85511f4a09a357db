#pragma once

#include "core/journal_info.h"
#include "core/recording_statistics.h"

#include <QByteArray>

/// The text of the description beside a record file. docs/records.md describes it. Any thread.
namespace record_description {

[[nodiscard]] QByteArray toJson(const JournalInfo &info, const RecordingStatistics &statistics);

/// Returns whether `json` describes the recording of `info`.
[[nodiscard]] bool describes(const QByteArray &json, const JournalInfo &info);

}  // namespace record_description
