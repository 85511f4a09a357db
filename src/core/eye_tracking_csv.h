#pragma once

#include "core/arrival_clock.h"
#include "core/numbered_sample.h"
#include "core/record_length.h"
#include "core/record_markers.h"
#include "core/recording_phases.h"
#include "toolkit/table/numeric_table_csv.h"

#include <deque>
#include <memory>
#include <utility>
#include <vector>

/// Where the sample of a row comes from. The record file does not contain it. Packed into 16 bytes, because a recording
/// has millions of rows.
// NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): C++17 has no initializers of bit-fields.
struct RowOrigin {
    static constexpr quint64 maxNumber = (quint64(1) << 62U) - 1;

    quint64 number : 62;  ///< NumberedSample::number
    quint64 l_valid : 1;
    quint64 r_valid : 1;
    std::chrono::steady_clock::time_point arrival;
};

struct RecordColumn {
    QString name;
    QString unit;  ///< empty for a number without a unit
};

/// Consecutive rows and consecutive markers of a recording. `origins` has an entry for each row.
struct RecordSlice {
    NumericRows rows;
    std::vector<RowOrigin> origins;
    std::vector<RecordMarker> markers;
};

/// A recording: a table with one row per sample. It is kept in memory and written to the record file in one call.
///
/// EyetrackerInterface owns it from the start to the stop of the recording, and adds samples and markers under a lock.
/// If the record file cannot be written, EyetrackerInterface keeps the recording until it is saved or discarded. The
/// columns are documented in docs/records.md. Do not change their order: programs read them by position.
class EyeTrackingCSV : public NumericTableCSV {
    Q_OBJECT

public:
    /// Limits the memory for markers, which come from other programs, to about 200 MB.
    static constexpr std::size_t maxMarkerCount = 100'000;

    /// Creates an empty recording for the record file `path`. With `load`, reads that file instead.
    EyeTrackingCSV(const QString &path, bool load);

    /// Returns the columns of all record files.
    [[nodiscard]] static const std::vector<RecordColumn> &columns();

    void setPhases(std::unique_ptr<RecordingPhases> phases) { phases_ = std::move(phases); }
    /// Sets the folders that saveFile() tries if the record file cannot be written to its own folder.
    void setFallbackFolders(const QStringList &folders) { fallbackFolders_ = folders; }
    /// Changes the path of the record file. Call it only before the file is written.
    void setPath(const QString &path) { filePath_ = path; }

    /// Tells the RecordingPhases object, if there is one, that the recording is discarded.
    void discard();

    /// Ignores all later samples, and releases the memory that is reserved for saving. Call it when memory runs out.
    /// Logs a warning at the first call.
    void stopGrowing();

    /// Returns why the last saveFile() did not write the file to its path, or an empty text if it did.
    [[nodiscard]] const QString &saveProblem() const { return saveProblem_; }

    void addNumbered(const NumberedSample &entry);

    /// Adds a marker. Its row is the last one. `newestNumber` is the number of the tracker's newest sample, which
    /// counts only if the recording has no row. Returns false if the recording has maxMarkerCount markers.
    [[nodiscard]] bool addMarker(const QString &text, std::chrono::steady_clock::time_point time, quint64 newestNumber);

    /// Returns the markers in the order in which they were set.
    [[nodiscard]] const std::deque<RecordMarker> &markers() const { return markers_; }

    /// Returns a copy of up to `maxCount` rows from `firstRow` on, and of up to `maxCount` markers from `firstMarker`
    /// on; none if there are not that many.
    [[nodiscard]] RecordSlice slice(std::size_t firstRow, std::size_t firstMarker, std::size_t maxCount) const;

    /// Returns the number of rows and the duration. The duration of a loaded file is 0, because it has no arrival
    /// times.
    [[nodiscard]] RecordLength length() const;

    /// Returns the clock of the recording, which was started with it.
    [[nodiscard]] const ArrivalClock &clock() const { return clock_; }

    /// Returns where the sample of a row comes from.
    [[nodiscard]] const RowOrigin &origin(std::size_t row) const { return origins_[row]; }

public Q_SLOTS:
    /// Writes the record file, or another file if that is not possible; see record_saving. currentFilePath() is then
    /// the file that was written. Logs a warning if the file is not at its path. Returns false if no file could be
    /// written. Does nothing and returns true if the path is empty.
    bool saveFile();

    /// Adds a sample that has no number and has just arrived.
    void addSample(const EyeTrackingSample &sample);

private:
    void appendRow(const EyeTrackingSample &sample);
    void releaseReserve();
    [[nodiscard]] std::size_t rowCountWithOrigin() const;

    const ArrivalClock clock_;
    std::deque<RowOrigin> origins_;
    std::deque<RecordMarker> markers_;
    qint64 firstTimestamp_ = 0;  ///< ms; 0 until the first sample with a timestamp
    bool growing_ = true;
    std::vector<char> reserve_;  ///< has no elements, only a capacity
    QStringList fallbackFolders_;
    QString saveProblem_;
    std::unique_ptr<RecordingPhases> phases_;  ///< destroyed first, because a journal reads the rows until then
};
