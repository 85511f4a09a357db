#include "toolkit/platform/file_lock.h"

#include <QFile>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// Another process may have removed the file between open() and flock(). A lock on a removed file excludes nobody.
bool isFileAt(int file, const QByteArray &path) {
    struct stat opened {};
    struct stat named {};
    return ::fstat(file, &opened) == 0 && ::stat(path.constData(), &named) == 0 && opened.st_ino == named.st_ino &&
           opened.st_dev == named.st_dev;
}

}  // namespace

bool FileLock::tryLock(const QString &path) {
    if (file_ != noFile)
        return false;
    const QByteArray name = QFile::encodeName(path);
    const int file = ::open(name.constData(), O_RDWR | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (file < 0)
        return false;
    // Unlike fcntl(), flock() also excludes other locks of the same process.
    if (::flock(file, LOCK_EX | LOCK_NB) != 0 || !isFileAt(file, name)) {
        ::close(file);
        return false;
    }
    file_ = file;
    return true;
}

void FileLock::unlock() {
    if (file_ != noFile)
        ::close(static_cast<int>(file_));
    file_ = noFile;
}
