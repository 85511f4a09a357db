#include "toolkit/base/file_names.h"

#include <QDir>
#include <QFileInfo>
#include <windows.h>

namespace {

/// Returns the path with the prefix for paths of more than 260 characters.
std::wstring nativePath(const QString &path) {
    const QString native = QDir::toNativeSeparators(QDir::cleanPath(QFileInfo(path).absoluteFilePath()));
    const bool isShare = native.startsWith("\\\\");
    return (isShare ? "\\\\?\\UNC" + native.mid(1) : "\\\\?\\" + native).toStdWString();
}

}  // namespace

file_names::Renaming file_names::renameIfFree(const QString &from, const QString &to) {
    if (to.contains(QChar(0)))
        return {Renaming::Outcome::Failed, QString(), qt_error_string(ERROR_INVALID_NAME)};
    if (MoveFileExW(nativePath(from).c_str(), nativePath(to).c_str(), MOVEFILE_WRITE_THROUGH))
        return {Renaming::Outcome::Done, to, QString()};
    const auto error = static_cast<int>(GetLastError());
    const bool isTaken = error == ERROR_ALREADY_EXISTS || error == ERROR_FILE_EXISTS;
    return {isTaken ? Renaming::Outcome::NameTaken : Renaming::Outcome::Failed, QString(), qt_error_string(error)};
}
