#pragma once

#include "toolkit/platform/file_lock.h"

#include <QString>

/// Decides whether this process may run, because only one instance of the program may run on a machine. GUI thread.
///
/// Instances are found by the file name of their executable, ignoring case. An instance with another file name is not
/// found. An instance that was refused, and only shows a message, does not count. Of instances that start at the same
/// time, the one that locks a file in the data folder runs. It waits until the others have refused themselves. The
/// operating system releases the locks when a process ends, even after a crash.
///
/// Instances of several users do not see each other's locks. If they start at the same time, all may be refused.
class SingleInstance {
public:
    /// Decides. Takes up to 3 s if instances start at the same time, or if another user's instance runs.
    SingleInstance();
    ~SingleInstance();
    Q_DISABLE_COPY(SingleInstance)

    [[nodiscard]] bool mayRun() const { return mayRun_; }

    /// Returns whether an instance that was not refused is running. Call it only if this instance was refused.
    [[nodiscard]] bool isAnotherRunning() const { return countCopies() > 0; }

private:
    [[nodiscard]] int countCopies() const;
    [[nodiscard]] bool isRefused(qint64 process) const;
    [[nodiscard]] QString refusalPath(qint64 process) const;
    void refuse();

    const QString folder_;
    FileLock decision_;  ///< held by the instance that runs
    FileLock refusal_;   ///< held by each refused instance, in a file of its own
    bool mayRun_ = false;
};
