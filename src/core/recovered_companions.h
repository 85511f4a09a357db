#pragma once

#include "core/journal_folder.h"
#include "core/record_markers.h"
#include "core/recording_statistics.h"

#include <atomic>
#include <chrono>
#include <optional>
#include <vector>

/// Writes the companions of a record file from its journal. Private to JournalRecovery.
class RecoveredCompanions {
public:
    /// The record file is JournalInfo::savingPath, which is complete.
    RecoveredCompanions(const JournalFolder &folder, const JournalInfo &info, const std::atomic<bool> &stopping)
        : folder_(folder), info_(info), stopping_(stopping) {}

    /// Returns whether the journal has markers, or may have markers that cannot be read.
    [[nodiscard]] bool hasMarkers() const;

    /// Writes the companions that are wanted and missing. A companion that cannot be written is a warning. Returns
    /// false if it was interrupted, or if the markers could not be read or written.
    [[nodiscard]] bool save() const;

private:
    [[nodiscard]] std::optional<std::vector<RecordMarker>> markers() const;
    [[nodiscard]] bool saveEvents() const;
    [[nodiscard]] bool saveDescription() const;
    [[nodiscard]] std::optional<std::chrono::microseconds> firstArrival() const;
    [[nodiscard]] bool hasDescription() const;
    [[nodiscard]] bool hasSamples() const;
    void saveSamples() const;
    [[nodiscard]] RecordingStatistics statistics() const;

    const JournalFolder &folder_;
    const JournalInfo &info_;
    const std::atomic<bool> &stopping_;
};
