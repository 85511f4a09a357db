#include "core/free_space.h"

#include <QDir>
#include <QFileInfo>
#include <QStorageInfo>
#include <algorithm>

namespace {

/// A typical row of a record file, and of the two tables of a journal.
constexpr double recordRowBytes = 240;
constexpr double journalRowBytes = recordRowBytes + 32;

constexpr double secondsPerMinute = 60;
constexpr double bytesPerMegabyte = 1e6;

QStorageInfo diskOf(const QString &path) {
    QString existing = QFileInfo(path).absoluteFilePath();
    while (!QFileInfo::exists(existing) && !QDir(existing).isRoot())
        existing = QFileInfo(existing).path();
    return QStorageInfo(existing);
}

bool isLow(const QString &disk, qint64 bytes) {
    return !disk.isEmpty() && bytes < free_space::enoughBytes;
}

}  // namespace

free_space::Disks free_space::read(const QString &recordPath, const QString &journalPath) {
    const QStorageInfo record = diskOf(recordPath);
    const QStorageInfo journal = diskOf(journalPath);
    return {record.rootPath(), record.bytesAvailable(), journal.rootPath(), journal.bytesAvailable()};
}

QString free_space::warning(const Disks &disks, double samplesPerSecond) {
    const bool isRecordLow = isLow(disks.recordDisk, disks.recordBytes);
    if (!isRecordLow && !isLow(disks.journalDisk, disks.journalBytes))
        return QString();
    const bool isShared = disks.recordDisk == disks.journalDisk;
    const double perRow = isShared ? recordRowBytes + journalRowBytes : isRecordLow ? recordRowBytes : journalRowBytes;
    const qint64 bytes = isRecordLow ? disks.recordBytes : disks.journalBytes;
    const double minutes = static_cast<double>(bytes) / (perRow * samplesPerSecond * secondsPerMinute);
    return QString("Only %1 MB are free on %2. At %3 samples per second, a recording can last %4 minutes")
        .arg(static_cast<double>(bytes) / bytesPerMegabyte, 0, 'f', 0)
        .arg(QDir::toNativeSeparators(isRecordLow ? disks.recordDisk : disks.journalDisk))
        .arg(samplesPerSecond, 0, 'f', 0)
        .arg(minutes, 0, 'f', minutes < 10 ? 1 : 0);
}
