#include "api/mime_types.h"

#include <QDateTime>
#include <QFileInfo>
#include <QMimeDatabase>

namespace {

constexpr int mostKnown = 1000;
/// A younger file may change again without a change of its time and size.
constexpr qint64 settledAfterMs = 2000;

QString lookUp(const QFileInfo &file) {
    static const QMimeDatabase database;
    return database.mimeTypeForFile(file).name();
}

}  // namespace

QString MimeTypes::nameFor(const QFileInfo &file) {
    const qint64 modifiedMs = file.lastModified().toMSecsSinceEpoch();
    const Known known = known_.with([&](const QHash<QString, Known> &all) { return all.value(file.filePath()); });
    if (!known.name.isEmpty() && known.size == file.size() && known.modifiedMs == modifiedMs)
        return known.name;

    QString name = lookUp(file);
    if (modifiedMs + settledAfterMs < QDateTime::currentMSecsSinceEpoch()) {
        known_.with([&](QHash<QString, Known> &all) {
            if (all.size() >= mostKnown)
                all.clear();
            all.insert(file.filePath(), {file.size(), modifiedMs, name});
        });
    }
    return name;
}
