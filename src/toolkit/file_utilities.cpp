#include "toolkit/file_utilities.h"

#include "toolkit/toolkit_log.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace {

const QDir::Filters everything = QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot;

/// isDir() and exists() look through a link; the entry itself is what gets removed.
bool isLink(const QFileInfo &entry) {
    return entry.isSymLink() || entry.isJunction();
}

/// Removes files and folders, and remembers the first thing that would not go and why.
class Remover {
public:
    bool empty(const QString &folder) {
        // An unreadable folder lists no entries; saying that it is empty would be a lie.
        if (!QFileInfo(folder).isReadable())
            return fail(folder, "the folder cannot be read");
        bool ok = true;
        for (const QFileInfo &entry : QDir(folder).entryInfoList(everything))
            ok = removeEntry(entry) && ok;
        return ok;
    }

    bool removeFolder(const QString &folder) { return QDir().rmdir(folder) || fail(folder, qt_error_string()); }

    /// On Windows a link to a folder goes with rmdir, everywhere else any link goes like a file.
    bool removeLink(const QString &path) { return QDir().rmdir(path) || removeFile(path); }

    QString failure() const { return failure_; }

private:
    bool removeFile(const QString &path) {
        QFile file(path);
        return file.remove() || fail(path, file.errorString());
    }

    bool removeEntry(const QFileInfo &entry) {
        const QString path = entry.absoluteFilePath();
        if (isLink(entry))
            return removeLink(path);
        return entry.isDir() ? empty(path) && removeFolder(path) : removeFile(path);
    }

    bool fail(const QString &path, const QString &reason) {
        if (failure_.isEmpty())
            failure_ = QString("%1: %2").arg(QDir::toNativeSeparators(path), reason);
        return false;
    }

    QString failure_;
};

bool refuse(const char *what, const QString &failure) {
    qCWarning(lcToolkit).noquote() << what << failure;
    return false;
}

}  // namespace

QString FileUtilities::FolderSlash(const QString &folder) {
    const QString slashed = QDir::fromNativeSeparators(folder);
    return slashed.isEmpty() || slashed.endsWith('/') ? slashed : slashed + '/';
}

bool FileUtilities::createIfNotExists(const QString &folder) {
    if (folder.isEmpty())
        return refuse("Cannot create a folder:", "its name is empty");
    if (QDir().mkpath(folder))
        return true;
    const QString reason = qt_error_string();
    return refuse("Cannot create the folder", QDir::toNativeSeparators(folder) + ": " + reason);
}

bool FileUtilities::clearFolder(const QString &folder, bool removeFolderItself) {
    // Qt takes an empty name for the current folder, which nobody asked to lose.
    if (folder.isEmpty())
        return refuse("Cannot clear a folder:", "its name is empty");
    const QFileInfo info(QDir::cleanPath(folder));
    if (!info.exists() && !isLink(info))
        return true;
    if (!info.isDir())
        return refuse("Cannot clear", QDir::toNativeSeparators(folder) + ": it is not a folder");

    Remover remover;
    bool ok = remover.empty(info.absoluteFilePath());
    if (removeFolderItself)
        ok = ok && (isLink(info) ? remover.removeLink(info.absoluteFilePath())
                                 : remover.removeFolder(info.absoluteFilePath()));
    return ok || refuse("Cannot clear the folder", remover.failure());
}
