#include "toolkit/base/file_names.h"

#include <QFile>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace {

/// Some file systems, for example NFS, cannot rename without replacing.
bool isUnsupported(int error) {
    return error == EINVAL || error == ENOSYS || error == EOPNOTSUPP;
}

/// Returns 0 or the error number.
int renameWithoutReplacing(const char *from, const char *to) {
    if (renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE) == 0)
        return 0;
    if (!isUnsupported(errno))
        return errno;
    if (link(from, to) != 0)
        return errno;
    // If this fails, the file has both names, and the new one can be used.
    unlink(from);
    return 0;
}

}  // namespace

file_names::Renaming file_names::renameIfFree(const QString &from, const QString &to) {
    if (to.contains(QChar(0)))
        return {Renaming::Outcome::Failed, QString(), qt_error_string(EINVAL)};
    const int error = renameWithoutReplacing(QFile::encodeName(from).constData(), QFile::encodeName(to).constData());
    if (error == 0)
        return {Renaming::Outcome::Done, to, QString()};
    const auto outcome = error == EEXIST ? Renaming::Outcome::NameTaken : Renaming::Outcome::Failed;
    return {outcome, QString(), qt_error_string(error)};
}
