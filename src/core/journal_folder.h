#pragma once

#include "core/journal_info.h"
#include "toolkit/platform/file_lock.h"

#include <memory>

/// The folder of one journal, which this object has locked. The destructor releases the lock and keeps the folder.
///
/// docs/records.md describes the files. The order of removal is part of the format: without its rows, a journal has
/// nothing to recover. One thread at a time.
class JournalFolder {
public:
    struct Created {
        std::unique_ptr<JournalFolder> folder;  ///< null after a failure
        QString problem;
    };

    /// Creates a folder in `journalsFolder` with the description and empty tables. If the name is taken, a number is
    /// appended to it. Does not sync: a busy disk needs seconds for that, in which the journal would have no rows.
    [[nodiscard]] static Created create(const QString &journalsFolder, const QString &name, const JournalInfo &info);

    /// Locks an existing journal. Returns null if another program or another part of this one has locked it, or if it
    /// cannot be locked for another reason.
    [[nodiscard]] static std::unique_ptr<JournalFolder> open(const QString &path);

    [[nodiscard]] const QString &path() const { return path_; }
    [[nodiscard]] QString rowsPath() const { return path_ + "/rows.csv"; }
    [[nodiscard]] QString samplesPath() const { return path_ + "/samples.csv"; }
    [[nodiscard]] QString markersPath() const { return path_ + "/markers.csv"; }
    [[nodiscard]] QString infoPath() const { return path_ + "/recording.json"; }

    /// Syncs the journal at `path`. Does not need its lock. Any thread. Returns the problem, or an empty text.
    [[nodiscard]] static QString sync(const QString &path);

    /// Replaces the description. It is on the disk when the function returns. Returns the problem, or an empty text.
    [[nodiscard]] QString writeInfo(const JournalInfo &info);

    /// Removes the journal and releases the lock. Files that cannot be removed are left to the next start.
    void remove();

    /// Removes what is left of a journal without rows and without a description, and releases the lock. A folder with
    /// other files is kept.
    void removeRest();

    /// Releases the lock and renames the folder to "NAME.damaged". Returns the new path, or an empty text.
    [[nodiscard]] QString keepAsDamaged();

private:
    explicit JournalFolder(QString path) : path_(std::move(path)) {}
    [[nodiscard]] QString fill(const JournalInfo &info);

    const QString path_;
    FileLock lock_;
};
