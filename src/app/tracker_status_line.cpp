#include "app/tracker_status_line.h"

#include "app/dashboard.h"
#include "views/elided_label.h"

#include <QHBoxLayout>
#include <QToolButton>

namespace {

constexpr int spacing = 12;
constexpr std::chrono::seconds calibrationShownFor(15);

}  // namespace

TrackerStatusLine::TrackerStatusLine(QWidget *parent)
    : BaseEyetrackerWidget(parent),
      label_(new ElidedLabel(Qt::ElideRight, this)),
      validateButton_(new QToolButton(this)),
      reconnectButton_(new QToolButton(this)) {
    label_->setObjectName("trackerStatus");
    validateButton_->setObjectName("validate");
    reconnectButton_->setObjectName("reconnect");
    connect(validateButton_, &QToolButton::clicked, this, &dashboard::openValidation);
    connect(reconnectButton_, &QToolButton::clicked, this, &TrackerStatusLine::reconnect);

    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(spacing);
    row->addWidget(label_);
    row->addWidget(validateButton_);
    row->addWidget(reconnectButton_);
    row->addStretch(1);
}

void TrackerStatusLine::eyetrackerChanged() {
    monitor_.reset();
    forgetCalibration();
    if (eyetracker_) {
        monitor_.emplace(*eyetracker_);
        connections_ << connect(eyetracker_, &EyetrackerInterface::connectedChanged, this,
                                [this](bool isConnected) {
                                    monitor_->connectionChanged();
                                    mayValidate_ = mayValidate_ && isConnected;
                                    refresh();
                                })
                     << connect(eyetracker_, &EyetrackerInterface::connectionFailed, this,
                                [this] {
                                    monitor_->connectionFailed();
                                    refresh();
                                })
                     << connect(eyetracker_, &EyetrackerInterface::calibrationStarted, this,
                                [this] {
                                    forgetCalibration();
                                    refresh();
                                })
                     << connect(eyetracker_, &EyetrackerInterface::calibrationFinished, this,
                                &TrackerStatusLine::showCalibration);
    }
    refresh();
}

void TrackerStatusLine::refresh() {
    const TrackerStatus status = monitor_ ? monitor_->status() : TrackerStatus();
    const QString text = monitor_ ? StatusTexts(locale()).tracker(status) : QString();
    label_->setText(calibrationText() + text);
    // A silent tracker cannot be validated. It has the button Reconnect instead.
    validateButton_->setText(tr("Validate"));
    validateButton_->setToolTip(
        tr("Opens a page in the browser that measures the accuracy of the calibration in degrees."));
    validateButton_->setVisible(mayValidate_ && validationAvailable_ && status.isLive());
    reconnectButton_->setText(tr("Reconnect"));
    reconnectButton_->setToolTip(tr("Opens the tracker again. A running recording continues."));
    reconnectButton_->setVisible(eyetracker_ && !status.isLive());
}

void TrackerStatusLine::reconnect() {
    if (!eyetracker_)
        return;
    eyetracker_->reconnect();
    // Without a new monitor, the earlier loss would be shown instead of the problem of this attempt.
    monitor_.emplace(*eyetracker_);
    refresh();
}

void TrackerStatusLine::setValidationAvailable(bool available) {
    validationAvailable_ = available;
    refresh();
}

void TrackerStatusLine::forgetCalibration() {
    calibrationShown_.setRemainingTime(0);
    mayValidate_ = false;
}

void TrackerStatusLine::showCalibration(EyetrackerInterface::CalibrationResult result) {
    using Result = EyetrackerInterface::CalibrationResult;
    calibration_ = result;
    mayValidate_ = result == Result::Done || result == Result::Unknown;
    calibrationShown_.setRemainingTime(calibrationShownFor);
    refresh();
}

QString TrackerStatusLine::calibrationText() const {
    return calibrationShown_.hasExpired() ? QString() : StatusTexts::calibration(calibration_) + ". ";
}
