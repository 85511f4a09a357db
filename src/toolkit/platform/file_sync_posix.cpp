#include "toolkit/platform/file_sync.h"

#include <QFile>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace {

bool syncOpened(const QString &path, int flags) {
    const int file = ::open(QFile::encodeName(path).constData(), flags | O_CLOEXEC);
    if (file < 0)
        return false;
    const bool synced = ::fsync(file) == 0;
    const int error = errno;
    ::close(file);
    errno = error;
    return synced;
}

}  // namespace

bool file_sync::syncFile(const QString &path) {
    return syncOpened(path, O_RDONLY);
}

bool file_sync::syncFolder(const QString &folder) {
    // Some network file systems cannot sync a folder, which they report as EINVAL.
    return syncOpened(folder, O_RDONLY | O_DIRECTORY) || errno == EINVAL;
}
