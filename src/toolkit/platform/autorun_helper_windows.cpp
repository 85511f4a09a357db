#include "toolkit/base/toolkit_log.h"
#include "toolkit/platform/autorun_helper.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <memory>
#include <objbase.h>
#include <shlobj.h>
#include <windows.h>

namespace {

struct Release {
    void operator()(IUnknown *object) const { object->Release(); }
};
template <typename Interface>
using ComPtr = std::unique_ptr<Interface, Release>;

/// Initialises COM for the lifetime of this object. CoInitializeEx() fails if the thread already uses the other
/// threading model. COM is then usable, but must not be uninitialised here.
class ComSession {
public:
    ComSession() : result_(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)) {}
    ~ComSession() {
        if (SUCCEEDED(result_))
            CoUninitialize();
    }
    ComSession(const ComSession &) = delete;
    ComSession &operator=(const ComSession &) = delete;

private:
    HRESULT result_;
};

const wchar_t *wide(const QString &text) {
    return reinterpret_cast<const wchar_t *>(text.utf16());
}

QString native(const QString &path) {
    return QDir::toNativeSeparators(path);
}

QString fail(const char *what, const QString &path, const QString &reason) {
    QString problem = native(path) + ": " + reason;
    qCWarning(lcToolkit).noquote() << what << problem;
    return problem;
}

QString startupFolder(bool allUsers) {
    PWSTR path = nullptr;
    const HRESULT result =
        SHGetKnownFolderPath(allUsers ? FOLDERID_CommonStartup : FOLDERID_Startup, KF_FLAG_CREATE, nullptr, &path);
    const QString folder = SUCCEEDED(result) ? QString::fromWCharArray(path) : QString();
    CoTaskMemFree(path);
    return QDir::fromNativeSeparators(folder);
}

HRESULT saveShortcut(const QString &path, const QString &program) {
    IShellLinkW *rawLink = nullptr;
    HRESULT result = CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkW,
                                      reinterpret_cast<void **>(&rawLink));
    if (FAILED(result))
        return result;
    const ComPtr<IShellLinkW> link(rawLink);
    result = link->SetPath(wide(native(program)));
    if (SUCCEEDED(result))
        result = link->SetWorkingDirectory(wide(native(QFileInfo(program).path())));
    if (FAILED(result))
        return result;

    IPersistFile *rawFile = nullptr;
    result = link->QueryInterface(IID_IPersistFile, reinterpret_cast<void **>(&rawFile));
    if (FAILED(result))
        return result;
    const ComPtr<IPersistFile> file(rawFile);
    return file->Save(wide(native(path)), TRUE);
}

QString addShortcut(const QString &path, const QString &program) {
    if (!QFileInfo::exists(program))
        return fail("Cannot add to autostart", program, qt_error_string(ERROR_FILE_NOT_FOUND));
    const ComSession com;
    // A temporary file is renamed at the end, so the Startup folder never contains an incomplete shortcut.
    const QString temporary = path + ".new";
    const HRESULT result = saveShortcut(temporary, program);
    const bool saved = SUCCEEDED(result);
    if (saved && MoveFileExW(wide(native(temporary)), wide(native(path)), MOVEFILE_REPLACE_EXISTING))
        return {};
    const QString reason = saved ? qt_error_string() : qt_error_string(static_cast<int>(result));
    // Windows opens all files in the Startup folder at login.
    QFile::remove(temporary);
    return fail("Cannot write", path, reason);
}

/// QFile cannot be used: it follows a shortcut to its target.
QString removeShortcut(const QString &path) {
    if (DeleteFileW(wide(native(path))) || GetLastError() == ERROR_FILE_NOT_FOUND)
        return {};
    return fail("Cannot remove", path, qt_error_string());
}

}  // namespace

QString AutorunHelper::changeAutorun(const QString &exeName, bool enable, bool allUsers) {
    const QString folder = startupFolder(allUsers);
    if (folder.isEmpty())
        return fail("Cannot find the Startup folder for", exeName, qt_error_string(ERROR_PATH_NOT_FOUND));
    const QString program = QCoreApplication::applicationDirPath() + '/' + exeName;
    const QString path = folder + '/' + QFileInfo(exeName).completeBaseName() + ".lnk";
    return enable ? addShortcut(path, program) : removeShortcut(path);
}
