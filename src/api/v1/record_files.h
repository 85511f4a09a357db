#pragma once

#include <QDateTime>
#include <QFile>
#include <QString>
#include <memory>
#include <vector>

namespace api_v1 {

/// The record files of the records folder. All functions may be called from any thread, and block while they read.
namespace record_files {

struct Entry {
    QString name;
    qint64 sizeBytes = 0;
    QDateTime modified;
};

/// Returns the record files of `folder`, newest first: regular files, not links, with the suffix .csv and the header of
/// a record file.
[[nodiscard]] std::vector<Entry> list(const QString &folder);

struct OpenFile {
    std::unique_ptr<QFile> file;
    qint64 sizeBytes = 0;
    QDateTime modified;

    /// Returns the strong validator of the content, with its quotes. It changes with each change of the file.
    [[nodiscard]] QByteArray tag() const;
};

/// Opens a file that list() contains under exactly this name. Returns no file if there is none.
[[nodiscard]] OpenFile open(const QString &folder, const QString &name);

}  // namespace record_files

}  // namespace api_v1
