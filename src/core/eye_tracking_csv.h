#pragma once

#include "core/eye_tracking_sample.h"
#include "core/recording_phases.h"
#include "toolkit/table/numeric_table_csv.h"

#include <memory>
#include <utility>
#include <vector>

/// A recording: a table with one row per sample. It is kept in memory and written to the record file in one call.
///
/// EyetrackerInterface owns it from the start to the stop of the recording, and adds samples under a lock. If the
/// record file cannot be written, EyetrackerInterface keeps the recording until it is saved or discarded. The columns
/// are documented in docs/records.md. Do not change their order: programs read them by position.
class EyeTrackingCSV : public NumericTableCSV {
    Q_OBJECT

public:
    /// Creates an empty recording for the record file `path`. With `load`, reads that file instead.
    EyeTrackingCSV(const QString &path, bool load);

    void setPhases(std::unique_ptr<RecordingPhases> phases) { phases_ = std::move(phases); }
    /// Sets the folders that saveFile() tries if the record file cannot be written to its own folder.
    void setFallbackFolders(const QStringList &folders) { fallbackFolders_ = folders; }
    /// Changes the folder of the record file, before it is written.
    void setFolder(const QString &folder);

    /// Tells the phases that the rows are not wanted.
    void discard();

    /// Ignores all later samples, and releases the memory that is reserved for saving. Call it when memory runs out.
    /// Logs a warning at the first call.
    void stopGrowing();

    /// Returns why the last saveFile() did not write the file to its path, or an empty text if it did.
    [[nodiscard]] const QString &saveProblem() const { return saveProblem_; }

public Q_SLOTS:
    /// Writes the record file, or another file if that is not possible; see record_saving. currentFilePath() is then
    /// the file that was written. Logs a warning if the file is not at its path. Returns false if no file could be
    /// written. Does nothing and returns true if the path is empty.
    bool saveFile();

    void addSample(const EyeTrackingSample &sample);

private:
    void releaseReserve();

    qint64 firstTimestamp_ = 0;  ///< ms; 0 until the first sample with a timestamp
    bool growing_ = true;
    std::vector<char> reserve_;  ///< has no elements, only a capacity
    std::unique_ptr<RecordingPhases> phases_;
    QStringList fallbackFolders_;
    QString saveProblem_;
};
