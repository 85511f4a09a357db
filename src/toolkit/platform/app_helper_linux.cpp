#include "toolkit/platform/app_helper.h"
#include "toolkit/platform/xcb_pointers.h"

#include <QDir>
#include <QFile>

namespace {

/// Returns an empty name for kernel threads, zombies and processes of other users.
QString executableOf(const QString &process) {
    QString path = QFile::symLinkTarget(process + "/exe");
    // The kernel adds this suffix after the file was deleted or replaced, for example by an update.
    const QString deletedSuffix = " (deleted)";
    if (path.endsWith(deletedSuffix))
        path.chop(deletedSuffix.size());
    return path.mid(path.lastIndexOf('/') + 1);
}

/// Returns the kernel's name of the process (at most 15 bytes), or an empty name for a process that has ended. The file
/// contains "42 (name) S 1 ...". The name may contain parentheses, so it ends at the last one. The state follows.
QString kernelNameOf(const QString &process) {
    QFile file(process + "/stat");
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray stat = file.readAll();
    const int open = stat.indexOf('(');
    const int close = stat.lastIndexOf(')');
    const QByteArray state = stat.mid(close + 2, 1);
    if (open < 0 || close < open || state == "Z" || state == "X")
        return {};
    return QFile::decodeName(stat.mid(open + 1, close - open - 1));
}

bool isProcess(const QString &entry) {
    return !entry.isEmpty() && entry.at(0).isDigit();
}

}  // namespace

QVector<AppHelper::RunningApp> AppHelper::runningApps() {
    QVector<RunningApp> apps;
    for (const QString &entry : QDir("/proc").entryList(QDir::Dirs)) {
        if (!isProcess(entry))
            continue;
        const QString process = "/proc/" + entry;
        const QString executable = executableOf(process);
        const QString name = executable.isEmpty() ? kernelNameOf(process) : executable;
        if (!name.isEmpty())
            apps.append({entry.toLongLong(), name});
    }
    return apps;
}

QString AppHelper::executableName(const QString &base) {
    return base;
}

QString AppHelper::displayProblem() {
    if (!qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") || !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        return {};
    const XcbConnection connection(xcb_connect(nullptr, nullptr));
    if (!xcb_connection_has_error(connection.get()))
        return {};
    return QString("no display can be reached (DISPLAY=%1)").arg(qEnvironmentVariable("DISPLAY"));
}
