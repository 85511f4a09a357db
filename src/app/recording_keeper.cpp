#include "app/recording_keeper.h"

#include "app/startup.h"
#include "core/eyetracker_interface.h"

#include <QApplication>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QPushButton>
#include <QScopedValueRollback>
#include <algorithm>

namespace {

/// A question with buttons of our own, because the buttons of Qt are translated only with Qt's catalogues.
class Question {
public:
    Question(QWidget *window, const QString &text, const QString &details)
        : box_(QMessageBox::Warning, QApplication::applicationName(), text, QMessageBox::NoButton,
               window->isVisible() ? window : nullptr) {
        box_.setTextFormat(Qt::PlainText);
        box_.setInformativeText(details);
    }

    [[nodiscard]] QPushButton *add(const QString &text, QMessageBox::ButtonRole role) {
        return box_.addButton(text, role);
    }

    /// Returns the chosen button, or `last` if the user closes the box.
    [[nodiscard]] QAbstractButton *ask(QPushButton *last) {
        box_.setEscapeButton(last);
        box_.exec();
        return box_.clickedButton();
    }

private:
    QMessageBox box_;
};

}  // namespace

RecordingKeeper::RecordingKeeper(QWidget *window) : QObject(window), window_(window) {}

void RecordingKeeper::addTracker(EyetrackerInterface *tracker) {
    trackers_.push_back(tracker);
    connect(tracker, &EyetrackerInterface::recordStopped, this, &RecordingKeeper::recordStopped);
}

bool RecordingKeeper::mayClose() {
    if (busy_) {
        if (QWidget *question = QApplication::activeModalWidget())
            question->raise();
        return false;
    }
    const QScopedValueRollback<bool> busy(busy_, true);
    const QStringList recording = recordingTrackers();
    const Closing answer = recording.isEmpty() ? Closing::SaveAll : askBeforeClosing(recording);
    if (answer == Closing::Cancel)
        return false;
    for (EyetrackerInterface *tracker : trackers_) {
        if (answer == Closing::Discard)
            tracker->discardRecord();
        else
            tracker->stopRecord();
    }
    return resolveUnsaved(true);
}

void RecordingKeeper::saveAll() {
    const QScopedValueRollback<bool> busy(busy_, true);
    for (EyetrackerInterface *tracker : trackers_)
        tracker->stopRecord();
    if (!unsavedProblem().isEmpty())
        saveUnsaved();
}

void RecordingKeeper::retry() {
    if (!busy_)
        saveUnsaved();
}

void RecordingKeeper::saveAs() {
    const auto isUnsaved = [](const EyetrackerInterface *tracker) { return !tracker->unsavedProblem().isEmpty(); };
    const auto tracker = std::find_if(trackers_.begin(), trackers_.end(), isUnsaved);
    if (busy_ || tracker == trackers_.end())
        return;
    const QScopedValueRollback<bool> busy(busy_, true);
    // Another recording may stay unsaved while the dialog is open.
    const QString unsaved = (*tracker)->unsavedPath();
    // Does not ask before overwriting, because an existing file is renamed.
    QString path = QFileDialog::getSaveFileName(window_, tr("Save as"), unsaved, tr("Record files (*.csv)"), nullptr,
                                                QFileDialog::DontConfirmOverwrite);
    if (path.isEmpty())
        return;
    if (QFileInfo(path).suffix().isEmpty())
        path += ".csv";
    (void)(*tracker)->saveUnsavedAs(unsaved, path);
}

QStringList RecordingKeeper::recordingTrackers() const {
    QStringList names;
    for (const EyetrackerInterface *tracker : trackers_) {
        if (tracker->isRecording())
            names << tracker->name();
    }
    return names;
}

QString RecordingKeeper::unsavedProblem() const {
    QString problem;
    for (const EyetrackerInterface *tracker : trackers_) {
        if (problem.isEmpty())
            problem = tracker->unsavedProblem();
    }
    return problem;
}

RecordingKeeper::Closing RecordingKeeper::askBeforeClosing(const QStringList &trackers) const {
    Question question(window_, tr("A recording is running: %1").arg(trackers.join(", ")),
                      tr("Stop it and save the record file before Ocela closes?"));
    const auto *save = question.add(tr("Stop and save"), QMessageBox::AcceptRole);
    const auto *discard = question.add(tr("Discard"), QMessageBox::DestructiveRole);
    const auto *answer = question.ask(question.add(tr("Cancel"), QMessageBox::RejectRole));
    return answer == save ? Closing::SaveAll : answer == discard ? Closing::Discard : Closing::Cancel;
}

RecordingKeeper::Unsaved RecordingKeeper::askAboutUnsaved(const QString &problem, bool closing) const {
    Question question(window_, tr("A recording could not be saved."),
                      tr("Its samples stay in memory until Ocela closes.") + "\n\n" + problem);
    const auto *again = question.add(tr("Try again"), QMessageBox::AcceptRole);
    const auto *choose = question.add(tr("Choose a folder..."), QMessageBox::ActionRole);
    const auto *discard = closing ? question.add(tr("Discard"), QMessageBox::DestructiveRole) : nullptr;
    const auto *answer = question.ask(question.add(closing ? tr("Cancel") : tr("Later"), QMessageBox::RejectRole));
    if (answer == nullptr)
        return Unsaved::Cancel;
    return answer == again    ? Unsaved::TryAgain
           : answer == choose ? Unsaved::ChooseFolder
                              : (answer == discard ? Unsaved::Discard : Unsaved::Cancel);
}

bool RecordingKeeper::resolveUnsaved(bool closing) {
    for (QString problem = unsavedProblem(); !problem.isEmpty(); problem = unsavedProblem()) {
        switch (askAboutUnsaved(problem, closing)) {
            case Unsaved::TryAgain:
                saveUnsaved();
                break;
            case Unsaved::ChooseFolder: {
                const QString folder = QFileDialog::getExistingDirectory(window_, tr("Choose a folder..."));
                if (!folder.isEmpty())
                    saveUnsaved(folder);
                break;
            }
            case Unsaved::Discard:
                for (EyetrackerInterface *tracker : trackers_)
                    tracker->discardUnsaved();
                break;
            case Unsaved::Cancel:
                return false;
        }
    }
    return true;
}

void RecordingKeeper::recordStopped() {
    // The question is queued, because its event loop must not run inside the code that stopped the recording.
    const auto ask = [this] {
        if (busy_)
            return;
        const QScopedValueRollback<bool> busy(busy_, true);
        (void)resolveUnsaved(false);
    };
    if (!busy_ && !unsavedProblem().isEmpty())
        QMetaObject::invokeMethod(this, ask, Qt::QueuedConnection);
}

void RecordingKeeper::saveUnsaved(const QString &folder) {
    // The folder may have been removed since the start of the program.
    startup::createRecordsFolder();
    for (EyetrackerInterface *tracker : trackers_)
        (void)tracker->saveUnsaved(folder);
}
