#include "toolkit/base/file_location.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

QString file_location::ofOpenFile(const QFile &file) {
    return file.isOpen() ? QFile::symLinkTarget(QString("/proc/self/fd/%1").arg(file.handle())) : QString();
}

QString file_location::ofFolder(const QString &folder) {
    return QDir(folder).canonicalPath();
}
