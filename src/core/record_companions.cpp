#include "core/record_companions.h"

#include "toolkit/base/file_utilities.h"

#include <QDir>
#include <QFileInfo>
#include <QLoggingCategory>

namespace {

Q_LOGGING_CATEGORY(lcRecord, "ocela.record")

/// Only ".csv" is removed, so that a record file "x.json" has the description "x.json.json".
QString baseName(const QString &recordPath) {
    const QString suffix = ".csv";
    return recordPath.endsWith(suffix, Qt::CaseInsensitive) ? recordPath.chopped(suffix.size()) : recordPath;
}

void warn(const QString &path, const QString &problem) {
    qCWarning(lcRecord).noquote() << "Cannot save"
                                  << QDir::toNativeSeparators(path) + ", which belongs to a record file: " + problem;
}

}  // namespace

QString record_companions::descriptionPath(const QString &recordPath) {
    return baseName(recordPath) + ".json";
}

QString record_companions::samplesPath(const QString &recordPath) {
    return baseName(recordPath) + "_samples.csv";
}

void record_companions::rename(const QString &recordPath, const QString &newRecordPath) {
    for (const auto pathOf : {&descriptionPath, &samplesPath}) {
        if (QFileInfo(pathOf(recordPath)).isFile())
            (void)file_names::renameIfFree(pathOf(recordPath), pathOf(newRecordPath));
    }
}

void record_companions::save(const QString &path, const NewFile::Write &write) {
    NewFile file(QFileInfo(path).path());
    if (!file.write(write)) {
        warn(path, file.problem());
    } else if (!file.takeName(path)) {
        const QString problem = file.problem();
        warn(path, file.takeFreeName(path) ? problem + ". It is in " + QDir::toNativeSeparators(file.name()) : problem);
    }
}

void record_companions::saveDescription(const QString &recordPath, const QByteArray &json) {
    save(descriptionPath(recordPath),
         [&](QSaveFile &file) { return FileUtilities::writeAll(file, json.constData(), json.size()); });
}
