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

enum class Kind { Record, Samples, Events, Areas };

/// Opens a record file that list() contains under exactly this name, or a file beside it. Returns no file if there is
/// none. The content of the files beside a record file is not checked.
[[nodiscard]] OpenFile open(const QString &folder, const QString &name, Kind kind = Kind::Record);

/// Saves the areas file beside the record file `name`, which open() has found, in place of an earlier one. Returns why
/// it cannot be saved, or an empty text.
[[nodiscard]] QString saveAreas(const QString &folder, const QString &name, const QByteArray &json);

}  // namespace record_files

}  // namespace api_v1
