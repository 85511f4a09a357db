#include "app/status_bar.h"

#include "app/recording_status_line.h"
#include "app/tracker_status_line.h"
#include "core/markers.h"
#include "views/elided_label.h"

#include <QBoxLayout>
#include <QEvent>

namespace {

constexpr int refreshIntervalMs = 1000;
/// Programs may set many markers per second. Their texts are then drawn together.
constexpr int markerDelayMs = 50;
constexpr int sideMargin = 8;
constexpr int spacing = 12;

}  // namespace

StatusBar::StatusBar(QWidget *parent)
    : BaseEyetrackerWidget(parent),
      problemLabel_(new ElidedLabel(Qt::ElideRight, this)),
      lines_(new QBoxLayout(QBoxLayout::LeftToRight)),
      trackerLine_(new TrackerStatusLine(this)),
      accessButton_(new AccessButton(this)),
      recordingLine_(new RecordingStatusLine(this)) {
    // The width of the texts must not become the width of the window.
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    problemLabel_->setObjectName("problem");
    problemLabel_->setStyleSheet("color: #B00000");
    problemLabel_->hide();
    connect(recordingLine_, &RecordingStatusLine::retryWanted, this, &StatusBar::retryWanted);
    connect(recordingLine_, &RecordingStatusLine::saveAsWanted, this, &StatusBar::saveAsWanted);
    connect(accessButton_, &AccessButton::clicked, this, &StatusBar::accessSettingsWanted);

    auto *firstLine = new QHBoxLayout;
    firstLine->setSpacing(spacing);
    firstLine->addWidget(trackerLine_, 1);
    firstLine->addWidget(accessButton_);
    lines_->setSpacing(0);
    lines_->addLayout(firstLine, 1);
    lines_->addWidget(recordingLine_);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(sideMargin, 0, sideMargin, 0);
    layout->setSpacing(0);
    layout->addWidget(problemLabel_);
    layout->addLayout(lines_);

    connect(&timer_, &QTimer::timeout, this, &StatusBar::refresh);
    timer_.start(refreshIntervalMs);
    markerTimer_.setSingleShot(true);
    connect(&markerTimer_, &QTimer::timeout, this, &StatusBar::refresh);
    refresh();
}

void StatusBar::addTracker(EyetrackerInterface *tracker) {
    recordingLine_->addTracker(tracker);
}

void StatusBar::showRecovered(const QString &path) {
    recordingLine_->showRecovered(path);
    arrange();
}

void StatusBar::showMarker(const Marker &marker) {
    recordingLine_->setMarker(marker.recorded);
    if (!markerTimer_.isActive())
        markerTimer_.start(markerDelayMs);
}

void StatusBar::setReach(AccessButton::Reach reach) {
    accessButton_->setReach(reach);
    arrange();
}

void StatusBar::setProblem(const QString &problem) {
    problemLabel_->setText(problem);
    problemLabel_->setVisible(!problem.isEmpty());
}

void StatusBar::setDashboardAvailable(bool available) {
    trackerLine_->setValidationAvailable(available);
    recordingLine_->setViewerAvailable(available);
    arrange();
}

void StatusBar::eyetrackerChanged() {
    trackerLine_->setEyetracker(eyetracker_);
    recordingLine_->setEyetracker(eyetracker_);
    arrange();
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
    trackerLine_->refresh();
    recordingLine_->refresh();
    arrange();
}

void StatusBar::arrange() {
    int needed = trackerLine_->sizeHint().width() + spacing + recordingLine_->sizeHint().width();
    if (!accessButton_->isHidden())
        needed += spacing + accessButton_->sizeHint().width();
    const bool fits = recordingLine_->isHidden() || needed <= contentsRect().width() - 2 * sideMargin;
    lines_->setDirection(fits ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
}
