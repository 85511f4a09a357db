#include "app/recording_status_line.h"

#include "app/dashboard.h"
#include "app/status_texts.h"
#include "core/eyetracker_interface.h"
#include "toolkit/platform/app_helper.h"
#include "views/elided_label.h"

#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QTextDocument>
#include <QToolButton>
#include <QUrl>

namespace {

constexpr int spacing = 12;
constexpr int markerShownMs = 3000;

QFileInfo fileAt(const QString &nativePath) {
    return QFileInfo(QDir::fromNativeSeparators(nativePath));
}

}  // namespace

RecordingStatusLine::RecordingStatusLine(QWidget *parent)
    : BaseEyetrackerWidget(parent),
      label_(new ElidedLabel(Qt::ElideMiddle, this)),
      folderButton_(new QToolButton(this)),
      viewerButton_(new QToolButton(this)),
      retryButton_(new QToolButton(this)),
      saveAsButton_(new QToolButton(this)) {
    label_->setObjectName("recordingStatus");
    folderButton_->setObjectName("openFolder");
    viewerButton_->setObjectName("openViewer");
    retryButton_->setObjectName("retry");
    saveAsButton_->setObjectName("saveAs");
    connect(folderButton_, &QToolButton::clicked, this, &RecordingStatusLine::openFolder);
    connect(viewerButton_, &QToolButton::clicked, this, &RecordingStatusLine::openViewer);
    connect(retryButton_, &QToolButton::clicked, this, &RecordingStatusLine::retryWanted);
    connect(saveAsButton_, &QToolButton::clicked, this, &RecordingStatusLine::saveAsWanted);

    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(spacing);
    row->addWidget(label_, 1);
    for (QToolButton *button : {folderButton_, viewerButton_, retryButton_, saveAsButton_})
        row->addWidget(button);
    hide();
}

void RecordingStatusLine::addTracker(EyetrackerInterface *tracker) {
    trackers_.push_back(tracker);
    connect(tracker, &EyetrackerInterface::recordStarted, this, [this, tracker] { recordStarted(*tracker); });
    const auto finish = [this, tracker](const QString &path) { setResult(*tracker, path); };
    connect(tracker, &EyetrackerInterface::recordStopped, this, finish);
    connect(tracker, &EyetrackerInterface::unsavedRecordSaved, this, finish);
}

void RecordingStatusLine::showRecovered(const QString &path) {
    result_ = Result{nullptr, path, {}, isInViewer(path)};
    refresh();
}

void RecordingStatusLine::setMarker(bool isRecorded) {
    isMarkerRecorded_ = isRecorded;
    markerEnd_.setRemainingTime(markerShownMs);
}

void RecordingStatusLine::eyetrackerChanged() {
    refresh();
}

void RecordingStatusLine::refresh() {
    QStringList texts = runningRecordings();
    const bool showsFile = result_ && !result_->path.isEmpty();
    const QString marker = markerText();
    if (!marker.isEmpty())
        texts << marker;
    if (result_)
        texts << resultText();
    const QString problem = unsavedProblem();
    if (!problem.isEmpty())
        texts << StatusTexts::notSaved(problem);

    label_->setText(texts.join("; "));
    label_->setToolTip(
        showsFile && problem.isEmpty() ? Qt::convertFromPlainText(QDir::toNativeSeparators(result_->path)) : QString());
    folderButton_->setText(tr("Open folder"));
    folderButton_->setVisible(showsFile);
    viewerButton_->setText(tr("Open in the viewer"));
    viewerButton_->setVisible(showsFile && viewerAvailable_ && result_->isInViewer);
    retryButton_->setText(tr("Retry"));
    retryButton_->setVisible(!problem.isEmpty());
    saveAsButton_->setText(tr("Save as"));
    saveAsButton_->setVisible(!problem.isEmpty());
    setVisible(!texts.isEmpty());
}

QStringList RecordingStatusLine::runningRecordings() const {
    QStringList texts;
    for (const EyetrackerInterface *tracker : trackers_) {
        const std::optional<RunningRecording> recording = tracker->runningRecording();
        const QString name = tracker == eyetracker_ ? QString() : tracker->name();
        if (recording)
            texts << StatusTexts(locale()).recording(*recording, name);
    }
    return texts;
}

QString RecordingStatusLine::markerText() const {
    if (markerEnd_.hasExpired())
        return QString();
    // The number is that of the selected tracker's recording, or of the first one if that tracker does not record.
    std::optional<RunningRecording> shown = eyetracker_ ? eyetracker_->runningRecording() : std::nullopt;
    for (auto tracker = trackers_.begin(); !shown && tracker != trackers_.end(); ++tracker)
        shown = (*tracker)->runningRecording();
    if (!isMarkerRecorded_)
        return shown ? StatusTexts::markerNotStored() : StatusTexts::markerWithoutRecording();
    return shown && shown->markerCount > 0 ? StatusTexts(locale()).markerSet(shown->markerCount) : QString();
}

QString RecordingStatusLine::resultText() const {
    if (result_->path.isEmpty())
        return StatusTexts::notSaved(tr("discarded"));
    const QString name = fileAt(result_->path).fileName();
    return result_->tracker ? StatusTexts(locale()).saved(result_->length, name) : StatusTexts::recovered(name);
}

QString RecordingStatusLine::unsavedProblem() const {
    QStringList problems;
    for (const EyetrackerInterface *tracker : trackers_)
        problems << tracker->unsavedProblem();
    problems.removeAll(QString());
    return problems.join("; ");
}

void RecordingStatusLine::recordStarted(const EyetrackerInterface &tracker) {
    const bool isOfAnother = result_ && result_->tracker && result_->tracker != &tracker;
    if (!isOfAnother)
        result_.reset();
    refresh();
}

void RecordingStatusLine::setResult(const EyetrackerInterface &tracker, const QString &path) {
    if (path.isEmpty() && !tracker.unsavedProblem().isEmpty())
        result_.reset();
    else
        result_ = Result{&tracker, path, tracker.finishedRecordLength(), isInViewer(path)};
    refresh();
}

void RecordingStatusLine::openFolder() const {
    const QString folder = fileAt(result_->path).absolutePath();
    if (!QDesktopServices::openUrl(QUrl::fromLocalFile(folder)))
        AppHelper::warningMessage(tr("The folder cannot be opened:") + '\n' + QDir::toNativeSeparators(folder),
                                  QString(), QMessageBox::Warning);
}

void RecordingStatusLine::setViewerAvailable(bool available) {
    viewerAvailable_ = available;
    refresh();
}

bool RecordingStatusLine::isInViewer(const QString &path) const {
    const QFileInfo file = fileAt(path);
    const QString recordsFolder = QDir(trackers_.front()->recordsFolder()).canonicalPath();
    return file.suffix().compare("csv", Qt::CaseInsensitive) == 0 && file.isFile() && !file.isSymLink() &&
           file.canonicalPath() == recordsFolder;
}

void RecordingStatusLine::openViewer() const {
    dashboard::openRecording(fileAt(result_->path).fileName());
}
