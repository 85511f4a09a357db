#pragma once

#include <QString>

class QFile;

/// Tells where files really are. Both functions return paths of the same form, without links, so that they can be
/// compared. Returns an empty text after an error. Any thread.
namespace file_location {

/// Returns the path of an open file. A path that was checked before the file was opened could lead to another file now.
[[nodiscard]] QString ofOpenFile(const QFile &file);

/// Returns the path of an existing folder.
[[nodiscard]] QString ofFolder(const QString &folder);

}  // namespace file_location
