#pragma once

#include "toolkit/base/new_file.h"

#include <QStringList>

/// Chooses the file for a recording, so that no recording is lost because of its path. Any thread.
namespace record_saving {

struct Result {
    QString path;     ///< the record file, or an empty text if none could be written
    QString problem;  ///< why the record file is not at the requested path, or an empty text
};

/// Writes a record file to `path`. A file of that name is kept under the next free numbered name. If `path` is a
/// symbolic link, this applies to its target, and the link stays.
///
/// If the file cannot have its name, it gets the next free numbered name in the same folder, or a name like
/// defaultFileName(). If it cannot be written there, it is written to the first possible folder of `fallbackFolders`.
/// Changes no other file, and creates no folder.
[[nodiscard]] Result save(const QString &path, const QStringList &fallbackFolders, const NewFile::Write &write,
                          const file_names::BeforeNaming &beforeNaming = nullptr);

/// Returns the default name of a record file, for example "2026-03-14_15-09-26-535_ocela.csv". It contains the current
/// time.
[[nodiscard]] QString defaultFileName();

}  // namespace record_saving
