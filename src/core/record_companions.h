#pragma once

#include "toolkit/base/new_file.h"

#include <string>

/// The files that are saved beside a record file and are named after it: "x.json", "x_samples.csv" and "x_events.csv"
/// for "x.csv". They are never replaced. Any thread. The record viewer saves "x_areas.json" later, and replaces it.
namespace record_companions {

/// Returns the path of the description.
[[nodiscard]] QString descriptionPath(const QString &recordPath);
/// Returns the path of the table of the samples' origins.
[[nodiscard]] QString samplesPath(const QString &recordPath);
/// Returns the path of the table of the markers.
[[nodiscard]] QString eventsPath(const QString &recordPath);

/// Returns the path of the areas of interest.
[[nodiscard]] QString areasPath(const QString &recordPath);

/// Renames the companions of a renamed record file. A companion whose new name is taken keeps its old name.
void rename(const QString &recordPath, const QString &newRecordPath);

/// Writes a companion to `path`. A file of that name is kept under the next free numbered name. Logs a warning if the
/// companion cannot be saved, or if it has another name. Returns whether it is saved.
bool save(const QString &path, const NewFile::Write &write);

/// Saves the description, see save().
void saveDescription(const QString &recordPath, const QByteArray &json);

/// Saves the table of the markers, see save(). If the file system refuses its name, it gets the current date and time
/// as its name.
[[nodiscard]] bool saveEvents(const QString &recordPath, const std::string &text);

}  // namespace record_companions
