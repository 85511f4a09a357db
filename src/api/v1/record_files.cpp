#include "api/v1/record_files.h"

#include "core/eye_tracking_csv.h"

#include <QDir>
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

QFileInfoList candidates(const QString &folder) {
    return QDir(folder).entryInfoList({"*.csv"}, QDir::Files | QDir::Hidden | QDir::NoSymLinks);
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

record_files::OpenFile record_files::open(const QString &folder, const QString &name) {
    const QFileInfoList infos = candidates(folder);
    const auto hasName = [&name](const QFileInfo &info) { return info.fileName() == name; };
    const auto info = std::find_if(infos.begin(), infos.end(), hasName);
    if (info == infos.end())
        return {};
    auto file = std::make_unique<QFile>(info->filePath());
    if (!file->open(QIODevice::ReadOnly) || !hasRecordHeader(*file))
        return {};
    const qint64 sizeBytes = file->size();
    return {std::move(file), sizeBytes, info->lastModified()};
}
