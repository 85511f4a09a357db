#pragma once

#include <QString>

/// Small operations on folders. A failure gives false and one warning that names the path and the reason.
/// Callable from any thread.
class FileUtilities {
public:
    /// `folder` with one slash at its end. An empty name stays empty: a slash would make it the root folder.
    static QString FolderSlash(const QString &folder);

    /// Makes sure that `folder` exists, with all its parents. A folder that is there already is a success.
    static bool createIfNotExists(const QString &folder);

    /// Removes everything in `folder`, and the folder too when `removeFolderItself` is set. What cannot be
    /// removed does not keep the rest from going. A link inside is removed, never followed, so nothing
    /// outside the folder is touched. A folder that does not exist is empty already: true.
    static bool clearFolder(const QString &folder, bool removeFolderItself);
};
