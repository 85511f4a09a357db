#pragma once

#include <QString>

class EyetrackerInterface;

/// Gives the recordings of trackers a journal each.
namespace recording_journal {

/// Returns the folder of all journals, which is in `dataFolder`, the folder of the program's data.
[[nodiscard]] QString folderIn(const QString &dataFolder);

/// Lets each later recording of `tracker` have a journal in `journalsFolder`, and warns in the log before a recording
/// starts with too little free space. GUI thread.
void enable(EyetrackerInterface &tracker, const QString &journalsFolder);

}  // namespace recording_journal
