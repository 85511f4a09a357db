#include "api/mime_types.h"

#include <QDateTime>
#include <QFileInfo>
#include <QMimeDatabase>

namespace {

constexpr int maxKnownCount = 1000;
/// File systems store times with a resolution of up to 2 s. A younger file may change while its time and size stay the
/// same.
constexpr qint64 minAgeMs = 2000;

QString lookUp(const QFileInfo &file) {
    static const QMimeDatabase database;
    return database.mimeTypeForFile(file).name();
}

}  // namespace

QString MimeTypes::nameFor(const QFileInfo &file) {
    const qint64 modifiedMs = file.lastModified().toMSecsSinceEpoch();
    const Known known = known_.with([&](const QHash<QString, Known> &all) { return all.value(file.filePath()); });
    if (!known.name.isEmpty() && known.sizeBytes == file.size() && known.modifiedMs == modifiedMs)
        return known.name;

    QString name = lookUp(file);
    if (modifiedMs + minAgeMs < QDateTime::currentMSecsSinceEpoch()) {
        known_.with([&](QHash<QString, Known> &all) {
            if (all.size() >= maxKnownCount)
                all.clear();
            all.insert(file.filePath(), {file.size(), modifiedMs, name});
        });
    }
    return name;
}
