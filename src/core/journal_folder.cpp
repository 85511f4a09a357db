#include "core/journal_folder.h"

#include "toolkit/base/file_utilities.h"
#include "toolkit/platform/file_sync.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <algorithm>

namespace {

constexpr char lockName[] = "/lock";
constexpr char newInfoName[] = "/recording.json.new";
constexpr int maxNameCount = 100;

QString numberedName(const QString &name, int number) {
    return number == 1 ? name : QString("%1_%2").arg(name).arg(number);
}

}  // namespace

JournalFolder::Created JournalFolder::create(const QString &journalsFolder, const QString &name,
                                             const JournalInfo &info) {
    if (!QDir().mkpath(journalsFolder))
        return {nullptr, qt_error_string()};
    QString problem = "all names are taken";
    for (int number = 1; number <= maxNameCount; ++number) {
        const QString path = journalsFolder + '/' + numberedName(name, number);
        if (!QDir().mkdir(path)) {
            problem = qt_error_string();
            if (!QFileInfo::exists(path))
                break;
            continue;
        }
        std::unique_ptr<JournalFolder> folder(new JournalFolder(path));
        // A recovery may see the folder before it is locked, and remove or lock it.
        if (!folder->lock_.tryLock(path + lockName))
            continue;
        problem = folder->fill(info);
        if (problem.isEmpty())
            return {std::move(folder), QString()};
        folder->remove();
        break;
    }
    return {nullptr, problem};
}

std::unique_ptr<JournalFolder> JournalFolder::open(const QString &path) {
    std::unique_ptr<JournalFolder> folder(new JournalFolder(path));
    return folder->lock_.tryLock(path + lockName) ? std::move(folder) : nullptr;
}

QString JournalFolder::fill(const JournalInfo &info) {
    // The description comes first and is complete: rows without a description would look like a damaged journal.
    QFile description(path_ + newInfoName);
    const QByteArray json = info.toJson();
    if (!description.open(QIODevice::WriteOnly) || !FileUtilities::writeAll(description, json.data(), json.size()))
        return description.errorString();
    description.close();
    if (!description.rename(infoPath()))
        return description.errorString();
    for (const QString &table : {rowsPath(), samplesPath(), markersPath()}) {
        QFile file(table);
        if (!file.open(QIODevice::WriteOnly))
            return file.errorString();
    }
    return QString();
}

QString JournalFolder::sync(const QString &path) {
    const JournalFolder folder(path);
    const QStringList files{folder.infoPath(), folder.samplesPath(), folder.markersPath(), folder.rowsPath()};
    const bool isSynced = std::all_of(files.begin(), files.end(), file_sync::syncFile) && file_sync::syncFolder(path) &&
                          file_sync::syncFolder(QFileInfo(path).path());
    return isSynced ? QString() : qt_error_string();
}

QString JournalFolder::writeInfo(const JournalInfo &info) {
    // QSaveFile syncs the file before it renames it.
    QSaveFile file(infoPath());
    if (!FileUtilities::save(file, info.toJson()))
        return file.errorString();
    return file_sync::syncFolder(path_) ? QString() : qt_error_string();
}

void JournalFolder::remove() {
    if (QFile::remove(rowsPath()))
        (void)file_sync::syncFolder(path_);
    // Windows does not remove a file that is open.
    lock_.unlock();
    QDir(path_).removeRecursively();
}

void JournalFolder::removeRest() {
    QFile::remove(path_ + newInfoName);
    QFile::remove(samplesPath());
    QFile::remove(markersPath());
    // Windows does not remove a file that is open.
    lock_.unlock();
    QFile::remove(path_ + lockName);
    QDir().rmdir(path_);
}

QString JournalFolder::keepAsDamaged() {
    // Windows does not rename a folder with an open file.
    lock_.unlock();
    for (int number = 1; number <= maxNameCount; ++number) {
        QString name = numberedName(path_ + ".damaged", number);
        if (!QFileInfo::exists(name) && QDir().rename(path_, name))
            return name;
    }
    return QString();
}
