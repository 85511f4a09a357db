#pragma once

#include <QString>
#include <cstddef>

/// Follows one recording from its start to its end, for example to store each phase on the disk.
///
/// Created when the recording starts. The recording owns it, and calls it on the thread that saves or discards. A phase
/// is durable when the function returns: the next step is taken only then. If the object is destroyed after neither
/// saved() nor discarded(), the rows of the recording are in no record file.
class RecordingPhases {
public:
    RecordingPhases() = default;
    virtual ~RecordingPhases() = default;
    RecordingPhases(const RecordingPhases &) = delete;
    RecordingPhases &operator=(const RecordingPhases &) = delete;

    /// Called before the complete file, with `rowCount` rows, gets the name `path`. No file has that name yet. Called
    /// again with another name if the renaming fails.
    virtual void saving(const QString &path, std::size_t rowCount) = 0;
    /// Called when the file has the name of the last saving().
    virtual void saved() = 0;
    /// Called when the user discards the recording.
    virtual void discarded() = 0;
};
