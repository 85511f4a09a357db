#pragma once

#include "core/eye_tracking_sample.h"
#include "toolkit/table/numeric_table_csv.h"

/// A recording: a table with one row per sample. It is kept in memory and written to the record file in one call.
///
/// EyetrackerInterface owns it from the start to the stop of the recording, and adds samples under a lock. The columns
/// are documented in docs/records.md. Do not change their order: programs read them by position.
class EyeTrackingCSV : public NumericTableCSV {
    Q_OBJECT

public:
    /// Creates an empty recording for the record file `path`. With `load`, reads that file instead.
    EyeTrackingCSV(const QString &path, bool load);

public Q_SLOTS:
    /// Writes the record file. An existing file of the same name is renamed, not overwritten. Does nothing if the path
    /// is empty. Logs a warning if the file cannot be written.
    void saveFile();

    void addSample(const EyeTrackingSample &sample);

private:
    qint64 firstTimestamp_ = 0;  ///< ms; 0 until the first sample with a timestamp
};
