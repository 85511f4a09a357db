#include "api/v1/record_files.h"

#include "core/eye_tracking_csv.h"
#include "core/record_companions.h"
#include "toolkit/base/file_utilities.h"

#include <QDir>
#include <QSaveFile>
#include <algorithm>

using namespace api_v1;

namespace {

QByteArray recordHeader() {
    QStringList names;
    for (const RecordColumn &column : EyeTrackingCSV::columns())
        names << column.name;
    return names.join(',').toLatin1() + "\r\n";
}

/// Reads the first line and returns to the start.
bool hasRecordHeader(QFile &file) {
    static const QByteArray header = recordHeader();
    return file.read(header.size()) == header && file.seek(0);
}

QFileInfoList candidates(const QString &folder, const char *pattern = "*.csv") {
    return QDir(folder).entryInfoList({pattern}, QDir::Files | QDir::Hidden | QDir::NoSymLinks);
}

record_files::OpenFile openNamed(const QFileInfoList &infos, const QString &name) {
    const auto hasName = [&name](const QFileInfo &info) { return info.fileName() == name; };
    const auto info = std::find_if(infos.begin(), infos.end(), hasName);
    if (info == infos.end())
        return {};
    auto file = std::make_unique<QFile>(info->filePath());
    if (!file->open(QIODevice::ReadOnly))
        return {};
    const qint64 sizeBytes = file->size();
    return {std::move(file), sizeBytes, info->lastModified()};
}

}  // namespace

std::vector<record_files::Entry> record_files::list(const QString &folder) {
    std::vector<Entry> entries;
    for (const QFileInfo &info : candidates(folder)) {
        QFile file(info.filePath());
        if (file.open(QIODevice::ReadOnly) && hasRecordHeader(file))
            entries.push_back({info.fileName(), info.size(), info.lastModified()});
    }
    const auto isNewer = [](const Entry &a, const Entry &b) {
        return a.modified != b.modified ? a.modified > b.modified : a.name < b.name;
    };
    std::sort(entries.begin(), entries.end(), isNewer);
    return entries;
}

QByteArray record_files::OpenFile::tag() const {
    return '"' + QByteArray::number(sizeBytes, 16) + '-' + QByteArray::number(modified.toMSecsSinceEpoch(), 16) + '"';
}

record_files::OpenFile record_files::open(const QString &folder, const QString &name, Kind kind) {
    const QFileInfoList infos = candidates(folder);
    OpenFile record = openNamed(infos, name);
    if (!record.file || !hasRecordHeader(*record.file))
        return {};
    switch (kind) {
        case Kind::Record:
            return record;
        case Kind::Samples:
            return openNamed(infos, record_companions::samplesPath(name));
        case Kind::Events:
            return openNamed(infos, record_companions::eventsPath(name));
        case Kind::Areas:
            return openNamed(candidates(folder, "*.json"), record_companions::areasPath(name));
    }
    return {};
}

QString record_files::saveAreas(const QString &folder, const QString &name, const QByteArray &json) {
    const QString path = QDir(folder).filePath(record_companions::areasPath(name));
    // QSaveFile would replace the target of the link.
    if (QFileInfo(path).isSymLink())
        return QDir::toNativeSeparators(path) + " is a link";
    QSaveFile file(path);
    return FileUtilities::save(file, json) ? QString() : file.errorString();
}
