#include "app/status_bar.h"

#include "core/eyetracker_interface.h"
#include "toolkit/platform/app_helper.h"
#include "views/elided_label.h"

#include <QBoxLayout>
#include <QDesktopServices>
#include <QDir>
#include <QEvent>
#include <QFileInfo>
#include <QUrl>

namespace {

constexpr int refreshIntervalMs = 1000;
constexpr int sideMargin = 8;
constexpr int spacing = 12;

QFileInfo fileAt(const QString &nativePath) {
    return QFileInfo(QDir::fromNativeSeparators(nativePath));
}

}  // namespace

StatusBar::StatusBar(QWidget *parent)
    : BaseEyetrackerWidget(parent),
      layout_(new QBoxLayout(QBoxLayout::LeftToRight, this)),
      trackerLabel_(new ElidedLabel(this)),
      recordings_(new QWidget(this)),
      recordingLabel_(new ElidedLabel(this)),
      folderLink_(new QLabel(this)) {
    // The width of the texts must not become the width of the window.
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    trackerLabel_->setObjectName("trackerStatus");
    recordingLabel_->setObjectName("recordingStatus");
    folderLink_->setObjectName("openFolder");
    folderLink_->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
    connect(folderLink_, &QLabel::linkActivated, this, &StatusBar::openFolder);

    auto *row = new QHBoxLayout(recordings_);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(spacing);
    row->addWidget(recordingLabel_, 1);
    row->addWidget(folderLink_);
    recordings_->hide();

    layout_->setContentsMargins(sideMargin, 0, sideMargin, 0);
    layout_->setSpacing(0);
    layout_->addWidget(trackerLabel_, 1);
    layout_->addWidget(recordings_);

    connect(&timer_, &QTimer::timeout, this, &StatusBar::refresh);
    timer_.start(refreshIntervalMs);
    refresh();
}

void StatusBar::addTracker(EyetrackerInterface *tracker) {
    trackers_.push_back(tracker);
    connect(tracker, &EyetrackerInterface::recordStarted, this, &StatusBar::refresh);
    const auto finish = [this, tracker](const QString &path) { setResult(*tracker, path); };
    connect(tracker, &EyetrackerInterface::recordStopped, this, finish);
    connect(tracker, &EyetrackerInterface::unsavedRecordSaved, this, finish);
}

void StatusBar::eyetrackerChanged() {
    monitor_.reset();
    if (eyetracker_) {
        monitor_.emplace(*eyetracker_);
        connections_ << connect(eyetracker_, &EyetrackerInterface::connectedChanged, this, [this] {
            monitor_->connectionChanged();
            refresh();
        });
    }
    refresh();
}

void StatusBar::changeEvent(QEvent *event) {
    if (event->type() == QEvent::LanguageChange || event->type() == QEvent::LocaleChange)
        refresh();
    BaseEyetrackerWidget::changeEvent(event);
}

void StatusBar::resizeEvent(QResizeEvent *event) {
    BaseEyetrackerWidget::resizeEvent(event);
    arrange();
}

void StatusBar::refresh() {
    trackerLabel_->setText(trackerText());
    showRecordings();
    arrange();
}

QString StatusBar::trackerText() const {
    return monitor_ ? StatusTexts(locale()).tracker(monitor_->status()) : QString();
}

QString StatusBar::runningRecordings() const {
    QStringList texts;
    for (const EyetrackerInterface *tracker : trackers_) {
        if (!tracker->isRecording())
            continue;
        const QString name = tracker == eyetracker_ ? QString() : tracker->name();
        texts << StatusTexts(locale()).recording(tracker->recordLength(), name);
    }
    return texts.join("; ");
}

QString StatusBar::resultText() const {
    if (!result_)
        return {};
    if (!result_->path.isEmpty())
        return StatusTexts(locale()).saved(result_->length, fileAt(result_->path).fileName());
    return StatusTexts::notSaved(result_->problem.isEmpty() ? tr("discarded") : result_->problem);
}

void StatusBar::showRecordings() {
    const QString running = runningRecordings();
    const bool showsResult = running.isEmpty() && result_;
    const bool isSaved = showsResult && !result_->path.isEmpty();
    recordingLabel_->setText(showsResult ? resultText() : running);
    recordingLabel_->setToolTip(isSaved ? QDir::toNativeSeparators(result_->path).toHtmlEscaped() : QString());
    folderLink_->setText(QString("<a href=\"folder\">%1</a>").arg(tr("Open folder").toHtmlEscaped()));
    folderLink_->setVisible(isSaved);
    recordings_->setVisible(showsResult || !running.isEmpty());
}

void StatusBar::setResult(const EyetrackerInterface &tracker, const QString &path) {
    result_ = Result{path, path.isEmpty() ? tracker.unsavedProblem() : QString(), tracker.finishedRecordLength()};
    refresh();
}

void StatusBar::openFolder() const {
    const QString folder = fileAt(result_->path).absolutePath();
    if (!QDesktopServices::openUrl(QUrl::fromLocalFile(folder)))
        AppHelper::warningMessage(tr("The folder cannot be opened:") + '\n' + QDir::toNativeSeparators(folder),
                                  QString(), QMessageBox::Warning);
}

void StatusBar::arrange() {
    const int needed = trackerLabel_->sizeHint().width() + spacing + recordings_->sizeHint().width();
    const bool fits = recordings_->isHidden() || needed <= contentsRect().width() - 2 * sideMargin;
    layout_->setDirection(fits ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
}
