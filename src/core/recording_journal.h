#pragma once

#include <QString>
#include <functional>

class EyetrackerInterface;

/// Gives the recordings of trackers a journal each, and companions of their record files.
namespace recording_journal {

/// Returns the folder of all journals, which is in `dataFolder`, the folder of the program's data.
[[nodiscard]] QString folderIn(const QString &dataFolder);

/// Lets each later recording of `tracker` have a journal in `journalsFolder`, and warns in the log before a recording
/// starts with too little free space. `isDescribed` is called at the start of each recording, and returns whether its
/// record file gets a description and a samples file, see record_companions. GUI thread.
void enable(EyetrackerInterface &tracker, const QString &journalsFolder, const std::function<bool()> &isDescribed);

}  // namespace recording_journal
