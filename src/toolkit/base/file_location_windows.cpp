#include "toolkit/base/file_location.h"

#include <QDir>
#include <QFile>
#include <io.h>
#include <windows.h>

namespace {

HANDLE handleOf(const QFile &file) {
    // The API declares handles as pointers.
    return reinterpret_cast<HANDLE>(_get_osfhandle(file.handle()));  // NOLINT(performance-no-int-to-ptr)
}

QString pathOf(HANDLE file) {
    const DWORD size = GetFinalPathNameByHandleW(file, nullptr, 0, FILE_NAME_NORMALIZED);
    std::wstring path(size, L'\0');
    const DWORD length = GetFinalPathNameByHandleW(file, path.data(), size, FILE_NAME_NORMALIZED);
    return length < size ? QDir::fromNativeSeparators(QString::fromWCharArray(path.data(), static_cast<int>(length)))
                         : QString();
}

}  // namespace

QString file_location::ofOpenFile(const QFile &file) {
    return file.isOpen() ? pathOf(handleOf(file)) : QString();
}

QString file_location::ofFolder(const QString &folder) {
    const std::wstring name = QDir::toNativeSeparators(QDir(folder).absolutePath()).toStdWString();
    constexpr DWORD share = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    // The flag permits to open a folder.
    const HANDLE handle =
        CreateFileW(name.c_str(), 0, share, nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (handle == INVALID_HANDLE_VALUE)
        return {};
    QString path = pathOf(handle);
    CloseHandle(handle);
    return path;
}
