#include "toolkit/base/toolkit_log.h"
#include "toolkit/platform/app_helper.h"

#include <windows.h>

// Must follow windows.h.
#include <tlhelp32.h>

QVector<AppHelper::RunningApp> AppHelper::runningApps() {
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
    if (snapshot == INVALID_HANDLE_VALUE) {
        const QString reason = qt_error_string();
        qCWarning(lcToolkit).noquote() << "Cannot list the running processes:" << reason;
        return {};
    }
    QVector<RunningApp> apps;
    PROCESSENTRY32W entry = {};
    entry.dwSize = sizeof(entry);
    for (BOOL more = Process32FirstW(snapshot, &entry); more; more = Process32NextW(snapshot, &entry))
        apps.append({entry.th32ProcessID, QString::fromWCharArray(entry.szExeFile)});
    CloseHandle(snapshot);
    return apps;
}

QString AppHelper::executableName(const QString &base) {
    return base + ".exe";
}

QString AppHelper::displayProblem() {
    return {};
}
