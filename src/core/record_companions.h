#pragma once

#include "toolkit/base/new_file.h"

/// The files that stand beside a record file and are named after it: "x.json" and "x_samples.csv" for "x.csv". They are
/// never replaced. Any thread.
namespace record_companions {

/// Returns the path of the description.
[[nodiscard]] QString descriptionPath(const QString &recordPath);
/// Returns the path of the table of the samples' origins.
[[nodiscard]] QString samplesPath(const QString &recordPath);

/// Renames the companions of a renamed record file. A companion whose new name is taken keeps its old name.
void rename(const QString &recordPath, const QString &newRecordPath);

/// Writes a companion to `path`. A file of that name is kept under the next free numbered name. Logs a warning if the
/// companion cannot be saved, or if it has another name.
void save(const QString &path, const NewFile::Write &write);

/// Saves the description, see save().
void saveDescription(const QString &recordPath, const QByteArray &json);

}  // namespace record_companions
