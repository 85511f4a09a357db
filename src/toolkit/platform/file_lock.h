#pragma once

#include <QString>

/// An exclusive lock on a file. The operating system releases it when the process ends, even after a crash.
///
/// The lock excludes every other FileLock, in this process and in others. QLockFile does not fit: it decides from the
/// process id in its file whether the owner still runs, and process ids are reused. One thread at a time may use an
/// object.
class FileLock {
public:
    FileLock() = default;
    ~FileLock() { unlock(); }
    Q_DISABLE_COPY(FileLock)

    /// Locks the file at `path`, and creates it if it does not exist. Never waits. Returns false if another FileLock
    /// holds the lock, if the file cannot be opened, or if this object is locked already.
    [[nodiscard]] bool tryLock(const QString &path);

    /// Releases the lock and keeps the file. Does nothing without a lock.
    void unlock();

private:
    static constexpr qintptr noFile = -1;

    qintptr file_ = noFile;  ///< the system's file descriptor or handle
};
