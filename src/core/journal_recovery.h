#pragma once

#include <QString>
#include <atomic>
#include <functional>
#include <thread>

/// Recovers the recordings of programs that ended unexpectedly. The main window owns one from startup on.
///
/// A thread of its own recovers all journals in `journalsFolder` that no program has locked. A recording is written to
/// "NAME_recovered.csv" in the folder of its record file, or in `recordsFolder` if that is not possible. Its journal is
/// then removed. No file is ever replaced. Each recovered file, and each journal that cannot be recovered, is logged.
/// See docs/records.md.
class JournalRecovery {
public:
    /// Called on the thread of the recovery after a recording was written to the file `path`.
    using Recovered = std::function<void(const QString &path)>;

    JournalRecovery(const QString &journalsFolder, const QString &recordsFolder, Recovered recovered = {});
    /// Interrupts the recovery and waits for its end. The next start recovers the rest.
    ~JournalRecovery();
    JournalRecovery(const JournalRecovery &) = delete;
    JournalRecovery &operator=(const JournalRecovery &) = delete;

    void waitForDone();

private:
    std::atomic<bool> stopping_{false};
    std::thread thread_;
};
