#pragma once

#include "core/record_length.h"
#include "views/base_eyetracker_widget.h"

#include <QDeadlineTimer>
#include <optional>
#include <vector>

class ElidedLabel;
class QToolButton;

/// The part of the status bar for recordings. Shows the running recordings of all trackers, then the saved file, or why
/// a recording was not saved. Its buttons open the folder of the file, open the file in the record viewer, or ask for
/// another attempt to save. GUI thread.
class RecordingStatusLine : public BaseEyetrackerWidget {
    Q_OBJECT

public:
    explicit RecordingStatusLine(QWidget *parent = nullptr);

    /// Shows the recordings of a tracker, also while another one is selected. The tracker is not owned.
    void addTracker(EyetrackerInterface *tracker);

    /// Shows the file of a recovered recording, until the next recording.
    void showRecovered(const QString &path);

    /// Stores whether the last marker was recorded. It is shown for a few seconds from the next refresh() on.
    void setMarker(bool isRecorded);

    /// Updates the texts and the buttons. Hides the line if there is nothing to show.
    void refresh();

    /// Sets whether the record viewer can be opened in the browser.
    void setViewerAvailable(bool available);

Q_SIGNALS:
    /// The user wants to try again to save the unsaved recordings.
    void retryWanted();
    /// The user wants to save an unsaved recording to another file.
    void saveAsWanted();

protected:
    void eyetrackerChanged() override;

private:
    /// The end of the last recording. The path is empty if the recording was discarded.
    struct Result {
        const EyetrackerInterface *tracker;  ///< null if the recording was recovered
        QString path;
        RecordLength length;
        bool isInViewer;  ///< whether the record viewer finds the file
    };

    [[nodiscard]] QStringList runningRecordings() const;
    [[nodiscard]] QString markerText() const;
    [[nodiscard]] QString resultText() const;
    [[nodiscard]] QString unsavedProblem() const;
    void recordStarted(const EyetrackerInterface &tracker);
    void setResult(const EyetrackerInterface &tracker, const QString &path);
    /// Returns whether a file is in the records folder. Asks the file system, so call it once for each file.
    [[nodiscard]] bool isInViewer(const QString &path) const;
    void openFolder() const;
    void openViewer() const;

    std::vector<EyetrackerInterface *> trackers_;
    bool isMarkerRecorded_ = false;
    QDeadlineTimer markerEnd_;      ///< when the last marker is no longer shown
    std::optional<Result> result_;  ///< std::nullopt before the first result, and while the last recording is unsaved

    ElidedLabel *label_;
    QToolButton *folderButton_;
    QToolButton *viewerButton_;
    QToolButton *retryButton_;
    QToolButton *saveAsButton_;
    bool viewerAvailable_ = true;
};
