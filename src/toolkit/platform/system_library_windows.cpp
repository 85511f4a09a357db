#include "toolkit/platform/system_library.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <array>
#include <windows.h>

using Error = VendorLibrary::Error;
using Reason = VendorLibrary::Reason;

namespace {

constexpr DWORD maxPathLength = 32768;  // with the NUL

std::wstring nativePath(const QString &path) {
    return QDir::toNativeSeparators(path).toStdWString();
}

/// Returns the path of a loaded library, or the path of the program if `module` is null.
QString modulePath(HMODULE module) {
    std::wstring path(maxPathLength, L'\0');
    const DWORD length = GetModuleFileNameW(module, path.data(), maxPathLength);
    return QString::fromWCharArray(path.data(), static_cast<int>(length));
}

/// Removes the working directory from the search path of libraries, because other people may write to it.
void excludeWorkingDirectory() {
    static const BOOL isExcluded = SetDllDirectoryW(L"");
    Q_UNUSED(isExcluded)
}

/// Returns the search path of LoadLibrary(). The default of SearchPath() includes the working directory.
QString searchPath() {
    std::array<wchar_t, MAX_PATH> system{};
    std::array<wchar_t, MAX_PATH> windows{};
    GetSystemDirectoryW(system.data(), MAX_PATH);
    GetWindowsDirectoryW(windows.data(), MAX_PATH);
    const QStringList folders{QFileInfo(modulePath(nullptr)).path(), QString::fromWCharArray(system.data()),
                              QString::fromWCharArray(windows.data()), qEnvironmentVariable("PATH")};
    return folders.join(';');
}

/// Returns the path of the file that LoadLibrary() tries first, or an empty string.
QString find(const QString &fileName) {
    std::wstring path(maxPathLength, L'\0');
    const DWORD length = SearchPathW(nativePath(searchPath()).c_str(), nativePath(fileName).c_str(), nullptr,
                                     maxPathLength, path.data(), nullptr);
    return QString::fromWCharArray(path.data(), static_cast<int>(length < maxPathLength ? length : 0));
}

/// Returns the machine type of a program or library, or std::nullopt for other files.
std::optional<WORD> machineOf(const QString &path) {
    struct Start {
        DWORD signature;
        IMAGE_FILE_HEADER header;
    };
    QFile file(path);
    IMAGE_DOS_HEADER dos{};
    Start start{};
    const auto read = [&file](auto &to) {
        return file.read(reinterpret_cast<char *>(&to), sizeof to) == static_cast<qint64>(sizeof to);
    };
    if (!file.open(QIODevice::ReadOnly) || !read(dos) || dos.e_magic != IMAGE_DOS_SIGNATURE)
        return {};
    if (!file.seek(dos.e_lfanew) || !read(start) || start.signature != IMAGE_NT_SIGNATURE)
        return {};
    return start.header.Machine;
}

/// Windows also reports ERROR_BAD_EXE_FORMAT if a dependency is for another architecture.
Reason reasonForBadFormat(const QString &path) {
    const std::optional<WORD> machine = machineOf(path);
    if (!machine)
        return Reason::NotALibrary;
    return machine == machineOf(modulePath(nullptr)) ? Reason::MissingDependency : Reason::WrongArchitecture;
}

/// Windows does not name the dependency that is missing.
Error explain(const QString &fileName, DWORD code) {
    const QString path = find(fileName);
    if (path.isEmpty())
        return {Reason::NotFound, fileName, {}, {}};
    Reason reason = Reason::Other;
    if (code == ERROR_MOD_NOT_FOUND || code == ERROR_PROC_NOT_FOUND)
        reason = Reason::MissingDependency;
    else if (code == ERROR_BAD_EXE_FORMAT)
        reason = reasonForBadFormat(path);
    return {reason, path, {}, qt_error_string(static_cast<int>(code))};
}

/// Prevents Windows from showing message boxes about errors, for the lifetime of this object.
class ErrorBoxBlocker {
public:
    ErrorBoxBlocker() { SetThreadErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX, &previousMode_); }
    ~ErrorBoxBlocker() { SetThreadErrorMode(previousMode_, nullptr); }
    Q_DISABLE_COPY(ErrorBoxBlocker)

private:
    DWORD previousMode_ = 0;
};

}  // namespace

QStringList system_library::fileNamesOf(const QString &name, std::optional<int> /*version*/) {
    return {name + ".dll"};
}

system_library::OpenResult system_library::open(const QString &fileName) {
    const ErrorBoxBlocker blocker;
    excludeWorkingDirectory();
    if (HMODULE module = LoadLibraryW(nativePath(fileName).c_str()))
        return {module, {}};
    return {nullptr, explain(fileName, GetLastError())};
}

void system_library::close(void *handle) {
    FreeLibrary(static_cast<HMODULE>(handle));
}

QFunctionPointer system_library::resolve(void *handle, const char *entryPoint) {
    return reinterpret_cast<QFunctionPointer>(GetProcAddress(static_cast<HMODULE>(handle), entryPoint));
}

QString system_library::pathOf(void *handle) {
    return modulePath(static_cast<HMODULE>(handle));
}
