#include "toolkit/base/file_utilities.h"

#include "toolkit/base/toolkit_log.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace {

const QDir::Filters everything = QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot;

/// QFileInfo::isDir() and exists() follow links, so check for a link first.
bool isLink(const QFileInfo &entry) {
    return entry.isSymLink() || entry.isJunction();
}

/// Removes files and folders, and keeps the path of the first failure and the reason for it.
class Remover {
public:
    bool empty(const QString &folder) {
        // The list of entries of an unreadable folder is empty.
        if (!QFileInfo(folder).isReadable())
            return fail(folder, "the folder cannot be read");
        bool ok = true;
        for (const QFileInfo &entry : QDir(folder).entryInfoList(everything))
            ok = removeEntry(entry) && ok;
        return ok;
    }

    bool removeFolder(const QString &folder) { return QDir().rmdir(folder) || fail(folder, qt_error_string()); }

    /// Windows removes a link to a folder with rmdir(). Elsewhere, links are removed like files.
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

bool fail(const char *what, const QString &failure) {
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
        return fail("Cannot create a folder:", "its name is empty");
    if (QDir().mkpath(folder))
        return true;
    const QString reason = qt_error_string();
    return fail("Cannot create the folder", QDir::toNativeSeparators(folder) + ": " + reason);
}

bool FileUtilities::clearFolder(const QString &folder, bool removeFolderItself) {
    // For Qt, an empty name is the current folder.
    if (folder.isEmpty())
        return fail("Cannot clear a folder:", "its name is empty");
    const QFileInfo info(QDir::cleanPath(folder));
    if (!info.exists() && !isLink(info))
        return true;
    if (!info.isDir())
        return fail("Cannot clear", QDir::toNativeSeparators(folder) + ": it is not a folder");

    Remover remover;
    bool ok = remover.empty(info.absoluteFilePath());
    if (removeFolderItself)
        ok = ok && (isLink(info) ? remover.removeLink(info.absoluteFilePath())
                                 : remover.removeFolder(info.absoluteFilePath()));
    return ok || fail("Cannot clear the folder", remover.failure());
}

bool FileUtilities::openUnbuffered(QSaveFile &file) {
    return file.open(QIODevice::WriteOnly | QIODevice::Unbuffered);
}

bool FileUtilities::writeAll(QFileDevice &file, const char *bytes, qint64 sizeBytes) {
    // When the disk becomes full, one call writes a part without an error. The next call fails with the reason.
    while (sizeBytes > 0) {
        const qint64 written = file.write(bytes, sizeBytes);
        if (written <= 0)
            return false;
        bytes += written;
        sizeBytes -= written;
    }
    return true;
}

bool FileUtilities::save(QSaveFile &file, const QByteArray &content) {
    return openUnbuffered(file) && writeAll(file, content.constData(), content.size()) && file.commit();
}
