#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <vector>

class EyetrackerInterface;
class QWidget;

/// Keeps recordings from being lost when the program closes, or when a record file cannot be written. Asks the user
/// what to do. The main window owns it and the trackers. GUI thread.
class RecordingKeeper : public QObject {
    Q_OBJECT

public:
    /// `window` is the parent of the questions.
    explicit RecordingKeeper(QWidget *window);

    void addTracker(EyetrackerInterface *tracker);

    /// Returns whether the program may close. If a tracker is recording, or if a recording is unsaved, asks the user
    /// first, and saves or discards the recordings. Returns false while a question is open.
    [[nodiscard]] bool mayClose();

    /// Stops all recordings and saves them without a question.
    void saveAll();

    /// Tries again to save the unsaved recordings. Does nothing while a question is open.
    void retry();
    /// Asks for a file and saves the last unsaved recording to it. If several trackers have unsaved recordings, uses
    /// the first of these trackers. Does nothing while a question is open.
    void saveAs();

private:
    enum class Closing { SaveAll, Discard, Cancel };
    enum class Unsaved { TryAgain, ChooseFolder, Discard, Cancel };

    [[nodiscard]] QStringList recordingTrackers() const;
    [[nodiscard]] QString unsavedProblem() const;
    [[nodiscard]] Closing askBeforeClosing(const QStringList &trackers) const;
    [[nodiscard]] Unsaved askAboutUnsaved(const QString &problem, bool closing) const;
    [[nodiscard]] bool resolveUnsaved(bool closing);
    void recordStopped();
    void saveUnsaved(const QString &folder = QString());

    QWidget *const window_;
    std::vector<EyetrackerInterface *> trackers_;
    bool busy_ = false;  ///< asking or saving
};
