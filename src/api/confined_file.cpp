#include "api/confined_file.h"

#include "toolkit/base/file_location.h"
#include "toolkit/base/file_names.h"

#include <QDir>
#include <QFileInfo>

namespace {

bool startsWithFolder(const QString &path, const QString &folder) {
    return !folder.isEmpty() && path.startsWith(folder.endsWith('/') ? folder : folder + '/');
}

QString absolute(const QString &path) {
    return QDir::cleanPath(QDir::current().absoluteFilePath(QDir::fromNativeSeparators(path)));
}

}  // namespace

bool confined_file::isNamedInside(const QString &path, const QString &folder) {
    // Case is ignored, because only the file system knows whether it matters.
    return startsWithFolder(absolute(path).toLower(), absolute(folder).toLower());
}

bool confined_file::isInside(const QFile &file, const QString &folder) {
    return startsWithFolder(file_location::ofOpenFile(file), file_location::ofFolder(folder));
}

bool confined_file::mayCreate(const QString &path, const QString &folder) {
    // File names have no NUL characters, and Qt logs a warning about them.
    if (folder.isEmpty() || path.contains(QChar(0)) || !isNamedInside(path, folder))
        return false;
    const QString parent = file_location::ofFolder(QFileInfo(file_names::withoutLinks(absolute(path))).path());
    const QString allowed = file_location::ofFolder(folder);
    return !allowed.isEmpty() && (parent == allowed || startsWithFolder(parent, allowed));
}
