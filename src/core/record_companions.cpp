#include "core/record_companions.h"

#include "core/record_saving.h"
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

QString record_companions::eventsPath(const QString &recordPath) {
    return baseName(recordPath) + "_events.csv";
}

QString record_companions::areasPath(const QString &recordPath) {
    return baseName(recordPath) + "_areas.json";
}

void record_companions::rename(const QString &recordPath, const QString &newRecordPath) {
    for (const auto pathOf : {&descriptionPath, &samplesPath, &eventsPath}) {
        if (QFileInfo(pathOf(recordPath)).isFile())
            (void)file_names::renameIfFree(pathOf(recordPath), pathOf(newRecordPath));
    }
}

bool record_companions::save(const QString &path, const NewFile::Write &write) {
    NewFile file(QFileInfo(path).path());
    if (!file.write(write)) {
        warn(path, file.problem());
        return false;
    }
    if (file.takeName(path))
        return true;
    const QString problem = file.problem();
    const bool saved = file.takeFreeName(path);
    warn(path, saved ? problem + ". It is in " + QDir::toNativeSeparators(file.name()) : problem);
    return saved;
}

void record_companions::saveDescription(const QString &recordPath, const QByteArray &json) {
    save(descriptionPath(recordPath),
         [&](QSaveFile &file) { return FileUtilities::writeAll(file, json.constData(), json.size()); });
}

bool record_companions::saveEvents(const QString &recordPath, const std::string &text) {
    const auto write = [&](QSaveFile &file) {
        return FileUtilities::writeAll(file, text.data(), static_cast<qint64>(text.size()));
    };
    if (save(eventsPath(recordPath), write))
        return true;
    const QString otherPath = eventsPath(QFileInfo(recordPath).path() + '/' + record_saving::defaultFileName());
    if (!save(otherPath, write))
        return false;
    qCInfo(lcRecord).noquote() << "The markers are in" << QDir::toNativeSeparators(otherPath);
    return true;
}
