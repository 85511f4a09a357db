#pragma once

#include <QString>

class QFile;

/// Checks that the files of clients are inside one folder. Any thread.
namespace confined_file {

/// Returns whether the name of a file leads into the folder, if no part of it is a link. Does not ask the file system:
/// on Windows, even the question whether a file exists can connect to another machine.
[[nodiscard]] bool isNamedInside(const QString &path, const QString &folder);

/// Returns whether an open file is inside the folder, also if its name contains links.
[[nodiscard]] bool isInside(const QFile &file, const QString &folder);

/// Returns whether the file would be inside the folder if it were created now. Its own folder must exist.
[[nodiscard]] bool mayCreate(const QString &path, const QString &folder);

}  // namespace confined_file
