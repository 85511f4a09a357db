#pragma once

#include <QString>

/// Warns about a disk that is too full for a recording. Any thread.
namespace free_space {

constexpr qint64 enoughBytes = 500'000'000;

/// The free space where a recording needs it.
struct Disks {
    QString recordDisk;  ///< where the disk is mounted; empty if unknown
    qint64 recordBytes = 0;
    QString journalDisk;
    qint64 journalBytes = 0;
};

/// Reads the free space for the file or folder at each path. The paths may not exist yet.
[[nodiscard]] Disks read(const QString &recordPath, const QString &journalPath);

/// Returns an empty text if there is enough space. Otherwise returns a warning with the minutes that a recording with
/// `samplesPerSecond` can last.
[[nodiscard]] QString warning(const Disks &disks, double samplesPerSecond);

}  // namespace free_space
