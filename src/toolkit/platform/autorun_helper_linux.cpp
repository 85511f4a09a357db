#include "toolkit/base/file_utilities.h"
#include "toolkit/base/toolkit_log.h"
#include "toolkit/platform/autorun_helper.h"
#include "toolkit/platform/desktop_entry.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>
#include <cerrno>

namespace {

QString withoutExe(const QString &exeName) {
    const QString suffix = ".exe";
    return exeName.endsWith(suffix, Qt::CaseInsensitive) ? exeName.chopped(suffix.size()) : exeName;
}

/// The first location is the user's folder. The others are for all users, in order of precedence.
QString autostartFolder(bool allUsers) {
    const QStringList folders = QStandardPaths::standardLocations(QStandardPaths::GenericConfigLocation);
    return folders.value(allUsers ? 1 : 0, "/etc/xdg") + "/autostart";
}

QString fail(const char *what, const QString &path, const QString &reason) {
    QString problem = path + ": " + reason;
    qCWarning(lcToolkit).noquote() << what << problem;
    return problem;
}

QString addEntry(const QString &path, const QString &program) {
    const QFileInfo file(program);
    if (!file.isExecutable())
        return fail("Cannot add to autostart", program, qt_error_string(file.exists() ? EACCES : ENOENT));
    QString folder = QFileInfo(path).path();
    if (!FileUtilities::createIfNotExists(folder))
        return folder;  // the reason is logged
    QSaveFile entry(path);
    const bool saved = FileUtilities::save(entry, desktopEntry(program));
    return saved ? QString() : fail("Cannot write", path, entry.errorString());
}

QString removeEntry(const QString &path) {
    QFile file(path);
    const bool removed = !file.exists() || file.remove();
    return removed ? QString() : fail("Cannot remove", path, file.errorString());
}

}  // namespace

QString AutorunHelper::changeAutorun(const QString &exeName, bool enable, bool allUsers) {
    const QString name = withoutExe(exeName);
    const QString path = autostartFolder(allUsers) + '/' + name + ".desktop";
    return enable ? addEntry(path, QCoreApplication::applicationDirPath() + '/' + name) : removeEntry(path);
}
