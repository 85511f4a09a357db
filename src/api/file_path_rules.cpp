#include "api/file_path_rules.h"

#include <QDir>
#include <QStringList>
#include <algorithm>

namespace {

/// Windows ignores an extension and spaces after the name of a device.
QString deviceNameIn(const QString &component) {
    return component.section('.', 0, 0).trimmed().toUpper();
}

bool isDevice(const QString &component) {
    static const QStringList devices{"CON", "PRN", "AUX", "NUL", "CONIN$", "CONOUT$"};
    const QString name = deviceNameIn(component);
    if (devices.contains(name))
        return true;
    // Windows also accepts superscript digits.
    static const QString portNumbers = QString::fromUtf8("0123456789\u00b9\u00b2\u00b3");
    const bool isPort = name.startsWith("COM") || name.startsWith("LPT");
    return isPort && name.size() == 4 && portNumbers.contains(name[3]);
}

bool startsWithDrive(const QString &fileName) {
    return fileName.size() > 1 && fileName[0].isLetter() && fileName[1] == ':';
}

}  // namespace

file_path_rules::System file_path_rules::currentSystem() {
    return QDir::separator() == '\\' ? System::windows : System::other;
}

bool file_path_rules::namesLocalFile(const QString &fileName, System system) {
    const QString path = QString(fileName).replace('\\', '/');
    if (path.startsWith("//"))
        return false;
    if (system != System::windows)
        return true;
    const QString withoutDrive = startsWithDrive(path) ? path.mid(2) : path;
    const QStringList components = withoutDrive.split('/');
    return !withoutDrive.contains(':') && std::none_of(components.begin(), components.end(), isDevice);
}
