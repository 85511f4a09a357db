#include "toolkit/autorun_helper.h"
#include "toolkit/toolkit_log.h"

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

/// COM for as long as this object lives. The GUI thread has it already, which counts as a success; so does a
/// thread that has it in the other threading model, where only the count must not be given back.
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

bool fail(const char *what, const QString &path, const QString &reason) {
    qCWarning(lcToolkit).noquote() << what << native(path) + ": " + reason;
    return false;
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

bool addShortcut(const QString &path, const QString &program) {
    if (!QFileInfo::exists(program))
        return fail("Cannot start with the system", program, "there is no such program");
    const ComSession com;
    // Written beside and renamed over, so that a half-written shortcut never stands in the Startup folder.
    const QString temporary = path + ".new";
    const HRESULT result = saveShortcut(temporary, program);
    const bool saved = SUCCEEDED(result);
    if (saved && MoveFileExW(wide(native(temporary)), wide(native(path)), MOVEFILE_REPLACE_EXISTING))
        return true;
    const QString reason = saved ? qt_error_string() : qt_error_string(static_cast<int>(result));
    // Windows would open it at each start of the session.
    QFile::remove(temporary);
    return fail("Cannot write", path, reason);
}

/// Not through QFile, which looks through a shortcut at the program it points to.
bool removeShortcut(const QString &path) {
    if (DeleteFileW(wide(native(path))) || GetLastError() == ERROR_FILE_NOT_FOUND)
        return true;
    return fail("Cannot remove", path, qt_error_string());
}

}  // namespace

bool AutorunHelper::setAppInAutorunUsingExe(const QString &exeName, bool enable, bool allUsers) {
    const QString folder = startupFolder(allUsers);
    if (folder.isEmpty())
        return fail("Cannot find the Startup folder for", exeName, "the system names none");
    const QString program = QCoreApplication::applicationDirPath() + '/' + exeName;
    const QString path = folder + '/' + QFileInfo(exeName).completeBaseName() + ".lnk";
    return enable ? addShortcut(path, program) : removeShortcut(path);
}
