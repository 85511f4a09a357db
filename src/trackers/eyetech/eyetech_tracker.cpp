#include "trackers/eyetech/eyetech_tracker.h"

#include "trackers/eyetech/eyetech_calibration_screen.h"
#include "trackers/eyetech/eyetech_camera_view.h"
#include "trackers/eyetech/eyetech_device_question.h"
#include "trackers/eyetech/eyetech_device_selection.h"
#include "trackers/eyetech/eyetech_frame_fetcher.h"
#include "trackers/eyetech/eyetech_library.h"
#include "trackers/eyetech/eyetech_log.h"
#include "trackers/eyetech/eyetech_settings.h"

#include <QDateTime>
#include <QDir>
#include <QPointer>
#include <QtConcurrent>
#include <algorithm>
#include <array>

namespace {

/// In the working directory.
constexpr char deviceSettingsFile[] = "QL2Settings.txt";

constexpr int pollIntervalMs = 10;
constexpr int emptyFrameDelayMs = 1000;

QByteArray libraryVersion() {
    std::array<char, 32> buffer{};
    quicklink2::QLAPI_GetVersion(static_cast<int>(buffer.size()), buffer.data());
    return QByteArray(buffer.data(), static_cast<int>(qstrnlen(buffer.data(), buffer.size())));
}

/// Limits a coordinate from the settings file to a range that is larger than any desktop.
int desktopPixels(int value) {
    constexpr int limit = 1000000;
    return std::clamp(value, -limit, limit);
}

}  // namespace

EyetechGrabber::EyetechGrabber(const QString &dataFolder, QObject *parent) : EyetrackerInterface(dataFolder, parent) {
    qRegisterMetaType<QLFrameData>("QLFrameData");
    buildSettings();
    findLibrary();
    buildPolling();
}

EyetechGrabber::~EyetechGrabber() {
    closeCalibrationWidget();
}

void EyetechGrabber::buildSettings() {
    eyetechSettings_ = new EyetechSettings(dataFolder() + QDir::separator() + "EyeTechSettings.xml", this);
    eyetechSettings_->reload();
    for (const auto change :
         {&EyetechSettings::changedCalibrationTimeMs, &EyetechSettings::changedCalibrationAnimationMs,
          &EyetechSettings::changedCalibrationDelayMs})
        connect(eyetechSettings_, change, this, &EyetechGrabber::takeTimings);
    connect(eyetechSettings_, &EyetechSettings::changedCalibration, this, &EyetechGrabber::takeTimings);
    takeTimings();
    // The next poll selects again, if no device is chosen yet.
    connect(eyetechSettings_, &EyetechSettings::changedDeviceSerialNumber, this, &EyetechGrabber::closeDeviceQuestion);

    setCalibratedArea(desktopPixels(eyetechSettings_->getLastCalibratedAreaX()),
                      desktopPixels(eyetechSettings_->getLastCalibratedAreaY()),
                      desktopPixels(eyetechSettings_->getLastCalibratedAreaW()),
                      desktopPixels(eyetechSettings_->getLastCalibratedAreaH()));
    connect(this, &EyetrackerInterface::calibrated, this, &EyetechGrabber::storeCalibratedArea, Qt::DirectConnection);
}

void EyetechGrabber::findLibrary() {
    if (!eyetech::loadQuickLink2()) {
        qCDebug(lcEyetech, "QL not loaded");
        return;
    }
    qCDebug(lcEyetech) << "Quick Link 2 loaded. Version:" << libraryVersion().constData();
    selectDevice();
    if (deviceId_ == 0)
        qCDebug(lcEyetech, "Device not found");
}

void EyetechGrabber::selectDevice() {
    closeDeviceQuestion();
    const eyetech::DeviceSelection selection =
        eyetech::selectDevice({eyetechSettings_->getDeviceSerialNumber(), serialNumber_});
    undecided_ = selection.undecided;
    if (!undecided_.empty())
        qCInfo(lcEyetech) << undecided_.size() << "devices are attached, and none is chosen";
    if (selection.device != 0)
        useDevice(selection.device);
}

void EyetechGrabber::useDevice(int device) {
    const eyetech::DeviceDescription description = eyetech::describeDevice(device);
    qCInfo(lcEyetech).noquote() << "Using the device" << description.model << "with the serial number"
                                << description.serialNumber;
    deviceId_ = device;
    if (serialNumber_ != description.serialNumber)
        wasCalibrated_ = false;
    serialNumber_ = description.serialNumber;
    eyetech::applySettings(device, deviceSettingsFile);
    if (wasCalibrated_)
        restoreCalibration();
}

/// A device that was plugged in again may have lost its calibration.
void EyetechGrabber::restoreCalibration() {
    if (calibrationId_ != 0 && applyCalibration(calibrationId_))
        return;
    qCWarning(lcEyetech, "The last calibration cannot be applied again. Calibrate the device");
    Q_EMIT calibrationFinished(CalibrationResult::Failed);
}

bool EyetechGrabber::applyCalibration(int calibrationId) {
    if (quicklink2::QLDevice_ApplyCalibration(deviceId_, calibrationId) != 0)
        return false;
    wasCalibrated_ = true;
    calibrationId_ = calibrationId;
    return true;
}

/// Shows the question, unless it was shown before for the same devices.
void EyetechGrabber::askForDevice() {
    if (question_)
        return;
    question_ = std::make_unique<EyetechDeviceQuestion>(undecided_);
    // Queued, because the question is destroyed.
    connect(
        question_.get(), &EyetechDeviceQuestion::answered, this,
        [this](int device) {
            closeDeviceQuestion();
            useDevice(device);
            if (!serialNumber_.isEmpty())
                eyetechSettings_->setDeviceSerialNumber(serialNumber_);
        },
        Qt::QueuedConnection);
    question_->show();
}

void EyetechGrabber::closeDeviceQuestion() {
    undecided_.clear();
    question_.reset();
}

void EyetechGrabber::buildPolling() {
    QTimer::singleShot(emptyFrameDelayMs, this, [this] { Q_EMIT newFrame(lastFrame_); });
    connect(&frameWatcher_, &QFutureWatcher<QLFrameData>::finished, this, &EyetechGrabber::takeFrame);
    connect(&pollTimer_, &QTimer::timeout, this, &EyetechGrabber::poll);
    pollTimer_.start(pollIntervalMs);
}

VTSettings *EyetechGrabber::settings() {
    return eyetechSettings_;
}

QWidget *EyetechGrabber::createViewWidget() {
    return new EyetechVideoDisplayWidget(this);
}

QString EyetechGrabber::connectionProblem() const {
    if (const auto &error = eyetech::libraryError())
        return libraryProblem(*error);
    if (!undecided_.empty())
        return tr("several devices attached, none chosen");
    return deviceId_ == 0 ? tr("no device found") : tr("device not available");
}

void EyetechGrabber::takeTimings() {
    eyetech::CalibrationSequence::timings = {eyetechSettings_->getCalibrationAnimationMs(),
                                             eyetechSettings_->getCalibrationDelayMs(),
                                             eyetechSettings_->getCalibrationTimeMs()};
}

void EyetechGrabber::storeCalibratedArea() {
    const QRect area = calibratedArea();
    eyetechSettings_->setLastCalibratedAreaX(area.x());
    eyetechSettings_->setLastCalibratedAreaY(area.y());
    eyetechSettings_->setLastCalibratedAreaW(area.width());
    eyetechSettings_->setLastCalibratedAreaH(area.height());
}

bool EyetechGrabber::start() {
    startRequested_ = true;
    mayAsk_ = true;
    if (quicklink2::QLDevice_Start(deviceId_) == 0)
        return true;
    qCDebug(lcEyetech, "Device not started successfully!");
    return false;
}

void EyetechGrabber::stop() {
    // Makes the poll start the device again, although it was stopped: that is intended.
    startRequested_ = true;
    mayAsk_ = false;
    question_.reset();
    eyetech::stopDevice(deviceId_);
    closeCalibrationWidget();
}

void EyetechGrabber::reconnect() {
    if (isCalibrating_)
        stopCalibration();
    stop();
    mayAsk_ = true;
    deviceId_ = 0;
    if (eyetech::libraryError())
        findLibrary();
    else
        selectDevice();
    if (deviceId_ == 0)
        setConnected(false);
    else
        start();
}

void EyetechGrabber::poll() {
    if (deviceId_ == 0 && !findDevice())
        return;
    const int status = eyetech::deviceStatus(deviceId_);
    setConnected(eyetech::isAttached(status));
    if (status == quicklink2::deviceStopped && startRequested_)
        quicklink2::QLDevice_Start(deviceId_);
    else if (status == quicklink2::deviceRunning && !frameAwaited_)
        fetchFrame();
}

// If the devices cannot be enumerated, selectDevice() prints the failure.
bool EyetechGrabber::findDevice() {
    const std::vector<int> devices = eyetech::enumerateDevices();
    if (devices.empty()) {
        closeDeviceQuestion();
        return false;
    }
    if (devices == undecided_) {
        if (mayAsk_)
            askForDevice();
        return false;
    }
    selectDevice();
    return true;
}

void EyetechGrabber::fetchFrame() {
    frameAwaited_ = true;
    frameFuture_ = QtConcurrent::run(eyetech::fetchFrame, deviceId_);
    frameWatcher_.setFuture(frameFuture_);
}

void EyetechGrabber::takeFrame() {
    frameAwaited_ = false;
    lastFrame_ = frameWatcher_.result();
    warnOfInvalidImage();
    Q_EMIT newData(lastFrame_.gazeValid(), static_cast<double>(lastFrame_.x()), static_cast<double>(lastFrame_.y()));
    Q_EMIT newFrame(lastFrame_);
    addSample(eyetech::sampleOf(lastFrame_, calibratedArea().size(), QDateTime::currentMSecsSinceEpoch()));
}

void EyetechGrabber::warnOfInvalidImage() {
    if (!lastImageInvalid_ && lastFrame_.hasInvalidImage())
        qCWarning(lcEyetech, "The device sends camera images of an invalid size, or without pixels");
    lastImageInvalid_ = lastFrame_.hasInvalidImage();
}

void EyetechGrabber::calibrate(QRect area) {
    if (deviceId_ == 0)
        return;
    setCalibratedArea(area);
    closeCalibrationWidget();
    openCalibrationWidget(area);
    runCalibration();
}

void EyetechGrabber::openCalibrationWidget(QRect area) {
    calibrationWidget_ = std::make_shared<EyetechCalibrationWidget>(this, area, eyetechSettings_->getCalibration());
    connect(
        calibrationWidget_.get(), &EyetechCalibrationWidget::calibrated, this,
        [this, widget = calibrationWidget_.get()](int calibrationId) {
            if (!applyCalibration(calibrationId))
                widget->fail(eyetech::CalibrationOutcome::NotApplied);
            Q_EMIT calibrated();
        },
        Qt::DirectConnection);
    connect(calibrationWidget_.get(), &EyetechCalibrationWidget::finished, this,
            &EyetrackerInterface::calibrationFinished, Qt::DirectConnection);
    // Queued, so that the calibration does not run inside the handler of the button's click.
    connect(calibrationWidget_.get(), &EyetechCalibrationWidget::calibrationWanted, this,
            &EyetechGrabber::runCalibration, Qt::QueuedConnection);
}

void EyetechGrabber::closeCalibrationWidget() {
    if (calibrationWidget_)
        calibrationWidget_->close();
}

void EyetechGrabber::runCalibration() {
    if (isCalibrating_)
        return;
    const QPointer<EyetechGrabber> self(this);
    isCalibrating_ = true;
    while (self && calibrationWidget_ && calibrationWidget_->isCalibrationWanted()) {
        const std::shared_ptr<EyetechCalibrationWidget> widget = calibrationWidget_;
        // "Recalibrate" overwrites the calibration of this screen.
        if (widget->calibrationId() == calibrationId_)
            calibrationId_ = 0;
        Q_EMIT calibrationStarted();
        widget->startCalibration();
    }
    if (self)
        isCalibrating_ = false;
}

void EyetechGrabber::stopCalibration() {
    Q_EMIT stopCalibrationRequest();
}
