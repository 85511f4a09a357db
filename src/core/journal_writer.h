#pragma once

#include "core/arrival_clock.h"
#include "core/clock_watch.h"
#include "core/eye_tracking_csv.h"
#include "core/journal_folder.h"
#include "core/journal_tables.h"
#include "core/recording_phases.h"

#include <chrono>
#include <condition_variable>
#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

/// Keeps the rows and markers of a running recording on the disk, in a journal from which they are recovered if the
/// program ends unexpectedly. See docs/records.md.
///
/// A thread of its own takes new rows from the recording, so the tracker never waits for the disk. A disk that is full
/// or cannot be written pauses the journal with one warning. It continues when there is room, with all rows that are
/// not on the disk. The recording in memory is not affected.
///
/// The owner calls the functions on one thread. Each may take as long as the disk needs. The first call of saving() or
/// discarded() takes the remaining rows and ends the journal's thread. The destructor keeps a journal that was neither
/// saved nor discarded, with all rows, for recovery at the next start.
class JournalWriter : public RecordingPhases {
public:
    /// Returns a copy of rows and markers, see EyeTrackingCSV::slice(). Called on the journal's thread, until saving(),
    /// discarded() or the destructor returns.
    using Source = std::function<RecordSlice(std::size_t firstRow, std::size_t firstMarker, std::size_t maxCount)>;

    static constexpr std::chrono::milliseconds takeInterval{250};
    /// Less than the 2 s that may be lost in a power failure, because taking and syncing need time, too.
    static constexpr std::chrono::milliseconds syncInterval{1500};
    static constexpr std::chrono::milliseconds retryInterval{2000};

    /// Creates the journal's folder in `journalsFolder`, on the journal's thread. `header` is the first line of the
    /// record file. `clock` gives the times of the samples. `systemNow` is called in the constructor
    /// and on the journal's thread.
    JournalWriter(QString journalsFolder, JournalInfo info, std::string header, Source source,
                  const ArrivalClock &clock, ClockWatch::SystemNow systemNow = &std::chrono::system_clock::now);
    ~JournalWriter() override;

    void saving(const QString &path, std::size_t rowCount) override;
    void saved() override;
    void discarded() override;

    /// Returns the description of the recording, after the first call of saving().
    [[nodiscard]] const JournalInfo &info() const { return info_; }

private:
    using Clock = std::chrono::steady_clock;

    void stop();
    [[nodiscard]] bool waitForStop(std::chrono::milliseconds timeout);
    void run();
    void step();
    void watchSystemClock();
    [[nodiscard]] QString takeRows();
    [[nodiscard]] QString create();
    [[nodiscard]] QString finishSync();
    void startSyncIfDue();
    void syncNow();
    void pause(const QString &reason);
    void resume();
    void writePhase(JournalPhase phase);
    void end(JournalPhase phase);

    const QString journalsFolder_;
    const QString folderName_;
    const std::string header_;
    const Source source_;
    const ArrivalClock clock_;

    // Used by the journal's thread, and by the owner after stop().
    JournalInfo info_;
    ClockWatch clockWatch_;
    bool clockStepIsStored_ = false;
    std::unique_ptr<JournalFolder> folder_;
    std::optional<JournalTables> tables_;
    JournalTables::End syncedEnd_;
    bool paused_ = false;
    bool mustGoBack_ = false;
    Clock::time_point nextTry_;
    Clock::time_point nextSync_;
    std::future<QString> sync_;  ///< a running sync. It has a thread of its own, so a slow disk does not delay taking.
    JournalTables::End syncingEnd_;

    std::mutex mutex_;  ///< guards stopping_
    std::condition_variable stopRequest_;
    bool stopping_ = false;
    std::thread thread_;
};
