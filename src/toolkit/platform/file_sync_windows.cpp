#include "toolkit/platform/file_sync.h"

#include <QDir>
#include <windows.h>

bool file_sync::syncFile(const QString &path) {
    const std::wstring name = QDir::toNativeSeparators(path).toStdWString();
    const HANDLE file = CreateFileW(name.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                    nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return false;
    const bool synced = FlushFileBuffers(file);
    const DWORD error = GetLastError();
    CloseHandle(file);
    SetLastError(error);
    return synced;
}

bool file_sync::syncFolder(const QString &) {
    return true;
}
