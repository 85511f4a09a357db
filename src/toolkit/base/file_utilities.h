#pragma once

#include <QByteArray>
#include <QString>

class QFileDevice;
class QSaveFile;

/// Operations on files and folders. Callable from any thread.
///
/// A failed operation on a folder returns false and logs one warning with the path and the reason. A failed operation
/// on a file returns false, and the file's errorString() returns the reason.
class FileUtilities {
public:
    /// Returns `folder` with forward slashes and a slash at its end. An empty name stays empty.
    static QString FolderSlash(const QString &folder);

    /// Creates `folder` and its parents unless they exist.
    static bool createIfNotExists(const QString &folder);

    /// Removes the content of `folder`, and with `removeFolderItself` also the folder. After a failure, the remaining
    /// entries are still removed. Links in the folder are removed and not followed. If `folder` is a link, the content
    /// of its target is removed. Returns true for a folder that does not exist.
    static bool clearFolder(const QString &folder, bool removeFolderItself);

    /// Opens `file` for writing without a buffer, for use with writeAll(). With a buffer, QSaveFile::commit() succeeds
    /// on a full disk although up to 16 KB at the end of the file were not written.
    [[nodiscard]] static bool openUnbuffered(QSaveFile &file);

    /// Writes all of `bytes`. After a failure only a part is written, and the file must not be committed.
    [[nodiscard]] static bool writeAll(QFileDevice &file, const char *bytes, qint64 sizeBytes);

    /// Opens `file`, writes `content` and commits. After a failure the earlier file is unchanged.
    [[nodiscard]] static bool save(QSaveFile &file, const QByteArray &content);
};
