#pragma once

#include "core/eye_tracking_sample.h"
#include "toolkit/numeric_table_csv.h"

/// One recording: a table with a row a sample, held in memory while it runs and written to its file in one
/// go.
///
/// Owned by EyetrackerInterface from the start to the stop of the recording, and used under its lock. The
/// columns and their order are documented in docs/records.md; readers of the files go by position.
class EyeTrackingCSV : public NumericTableCSV {
    Q_OBJECT

public:
    /// A new record that saveFile() will write to `path`, or, with `load`, the record that stands in that
    /// file.
    EyeTrackingCSV(const QString &path, bool load);

public Q_SLOTS:
    /// Writes the record to its file, keeping one that stands there already. Does nothing for an empty path;
    /// a failure is one warning in the log.
    void saveFile();

    void addSample(const EyeTrackingSample &sample);

private:
    qint64 firstTimestamp_ = 0;  ///< ms; 0 until the first sample with a timestamp
};
