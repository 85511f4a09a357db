#include "system/record_file.h"

#include <QFile>

RecordFile::RecordFile(const QString &path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return;
    QList<QByteArray> lines = file.readAll().split('\n');
    // The last line must have a line end, too.
    if (!lines.takeLast().isEmpty())
        return;
    header = lines.takeFirst().trimmed();
    for (const QByteArray &line : lines)
        rows << QString::fromUtf8(line.trimmed()).split(',');
}
