#include "toolkit/app_helper.h"

#include <QDir>
#include <QFile>
#include <xcb/xcb.h>

namespace {

/// Empty for a kernel thread, a zombie, and a process that belongs to another user.
QString executableOf(const QString &process) {
    QString path = QFile::symLinkTarget(process + "/exe");
    // An update replaced the file while the program ran: it is still that program.
    const QString replaced = " (deleted)";
    if (path.endsWith(replaced))
        path.chop(replaced.size());
    return path.mid(path.lastIndexOf('/') + 1);
}

/// The name that the kernel keeps (at most 15 bytes), empty when the process has ended. In "42 (a (b) c) S 1
/// ..." the name goes up to the last parenthesis, whatever it contains, and the state letter follows.
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

QStringList AppHelper::getRunningApps() {
    QStringList names;
    for (const QString &entry : QDir("/proc").entryList(QDir::Dirs)) {
        if (!isProcess(entry))
            continue;
        const QString process = "/proc/" + entry;
        const QString executable = executableOf(process);
        const QString name = executable.isEmpty() ? kernelNameOf(process) : executable;
        if (!name.isEmpty())
            names << name;
    }
    return names;
}

QString AppHelper::executableName(const QString &base) {
    return base;
}

QString AppHelper::displayProblem() {
    if (!qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") || !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        return {};
    xcb_connection_t *connection = xcb_connect(nullptr, nullptr);
    const bool reached = !xcb_connection_has_error(connection);
    xcb_disconnect(connection);
    return reached ? QString() : QString("no display can be reached (DISPLAY=%1)").arg(qEnvironmentVariable("DISPLAY"));
}
