#include "toolkit/platform/file_lock.h"

#include <QDir>
#include <windows.h>

namespace {

HANDLE handleOf(qintptr file) {
    // The API declares handles as pointers.
    return reinterpret_cast<HANDLE>(file);  // NOLINT(performance-no-int-to-ptr)
}

}  // namespace

bool FileLock::tryLock(const QString &path) {
    if (file_ != noFile)
        return false;
    const std::wstring name = QDir::toNativeSeparators(path).toStdWString();
    const HANDLE file = CreateFileW(name.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                    nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return false;
    OVERLAPPED start{};
    if (!LockFileEx(file, LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0, &start)) {
        CloseHandle(file);
        return false;
    }
    file_ = reinterpret_cast<qintptr>(file);
    return true;
}

void FileLock::unlock() {
    if (file_ == noFile)
        return;
    // When a handle is closed, Windows releases its locks at an unspecified later time.
    OVERLAPPED start{};
    UnlockFileEx(handleOf(file_), 0, 1, 0, &start);
    CloseHandle(handleOf(file_));
    file_ = noFile;
}
