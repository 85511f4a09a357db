#include "toolkit/base/file_utilities.h"
#include "toolkit/base/toolkit_log.h"
#include "toolkit/platform/autorun_helper.h"
#include "toolkit/platform/desktop_entry.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>

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

bool fail(const char *what, const QString &path, const QString &reason) {
    qCWarning(lcToolkit).noquote() << what << path + ": " + reason;
    return false;
}

bool addEntry(const QString &path, const QString &program) {
    if (!QFileInfo(program).isExecutable())
        return fail("Cannot add to autostart", program, "the program does not exist");
    if (!FileUtilities::createIfNotExists(QFileInfo(path).path()))
        return false;
    QSaveFile file(path);
    return FileUtilities::save(file, desktopEntry(program)) || fail("Cannot write", path, file.errorString());
}

bool removeEntry(const QString &path) {
    QFile file(path);
    return !file.exists() || file.remove() || fail("Cannot remove", path, file.errorString());
}

}  // namespace

bool AutorunHelper::setAppInAutorunUsingExe(const QString &exeName, bool enable, bool allUsers) {
    const QString name = withoutExe(exeName);
    const QString path = autostartFolder(allUsers) + '/' + name + ".desktop";
    return enable ? addEntry(path, QCoreApplication::applicationDirPath() + '/' + name) : removeEntry(path);
}
