#pragma once

#include "toolkit/platform/file_lock.h"

#include <QString>

/// Decides whether this process may run the program, because only one copy may run on a machine. GUI thread.
///
/// Copies are found by the file name of their executable, in any case of letters. A copy with another file name is not
/// found. A copy that only tells its user that it was refused does not count. Of copies that start at the same time,
/// the one that locks a file in the data folder runs. It waits until the others have refused themselves. The operating
/// system releases the locks when a process ends, even after a crash.
///
/// Copies of several users do not see each other's locks. If they start at the same time, both may be refused.
class SingleInstance {
public:
    /// Decides. Takes up to 3 s if copies start at the same time, or if another user's copy runs.
    SingleInstance();
    ~SingleInstance();
    Q_DISABLE_COPY(SingleInstance)

    [[nodiscard]] bool mayRun() const { return mayRun_; }

    /// Returns whether a copy that counts is running. Call it only if this one is refused.
    [[nodiscard]] bool isAnotherRunning() const { return countCopies() > 0; }

private:
    [[nodiscard]] int countCopies() const;
    [[nodiscard]] bool isRefused(qint64 process) const;
    [[nodiscard]] QString refusalPath(qint64 process) const;
    void refuse();

    const QString folder_;
    FileLock decision_;  ///< held by the copy that runs
    FileLock refusal_;   ///< held by each refused copy, in a file of its own
    bool mayRun_ = false;
};
