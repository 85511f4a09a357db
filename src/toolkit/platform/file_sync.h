#pragma once

#include <QString>

/// Waits until written data is on the disk, so that it survives a power failure. Any thread. May take seconds on a busy
/// disk. After a failure, qt_error_string() returns the reason.
namespace file_sync {

/// Waits for the content of the file at `path`, even if it was written through another handle.
[[nodiscard]] bool syncFile(const QString &path);

/// Waits for the names of the files in `folder`: files that were created, renamed or removed. Does nothing on Windows,
/// which has no documented call for it; NTFS keeps names in its own journal.
[[nodiscard]] bool syncFolder(const QString &folder);

}  // namespace file_sync
