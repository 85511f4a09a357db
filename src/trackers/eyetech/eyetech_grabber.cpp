#include "trackers/eyetech/eyetech_grabber.h"

#include "core/pixels.h"
#include "trackers/eyetech/eyetech_calibration_widget.h"
#include "trackers/eyetech/eyetech_settings.h"
#include "trackers/eyetech/eyetech_video_display_widget.h"
#include "trackers/eyetech/quicklink2_binding.h"
#include "trackers/eyetech/select_device.h"

#include <QDateTime>
#include <QDir>
#include <QLoggingCategory>
#include <QPointer>
#include <QtConcurrent>
#include <algorithm>
#include <array>

namespace {

Q_LOGGING_CATEGORY(lcEyetech, "ocela.eyetech")

/// Found in the working directory.
constexpr char deviceSettingsFile[] = "QL2Settings.txt";

constexpr int pollIntervalMs = 10;
constexpr int firstFrameMs = 1000;
constexpr int frameWaitMs = 10000;
constexpr int mostDevices = 100;

/// The frame task. Whatever the call says, the record is used as it stands.
QLFrameData frameOf(int device) {
    QLFrameData frame;
    quicklink2::QLDevice_GetFrame(device, frameWaitMs, &frame.record);
    frame.copyImage();
    return frame;
}

QByteArray libraryVersion() {
    std::array<char, 32> buffer{};
    quicklink2::QLAPI_GetVersion(static_cast<int>(buffer.size()), buffer.data());
    return QByteArray(buffer.data(), static_cast<int>(qstrnlen(buffer.data(), buffer.size())));
}

/// Settings files may say anything; no desktop is larger.
int desktopPixels(int value) {
    constexpr int most = 1000000;
    return std::clamp(value, -most, most);
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

    setCalibratedArea(desktopPixels(eyetechSettings_->getLastCalibratedAreaX()),
                      desktopPixels(eyetechSettings_->getLastCalibratedAreaY()),
                      desktopPixels(eyetechSettings_->getLastCalibratedAreaW()),
                      desktopPixels(eyetechSettings_->getLastCalibratedAreaH()));
    connect(this, &EyetrackerInterface::calibrated, this, &EyetechGrabber::storeCalibratedArea, Qt::DirectConnection);
}

void EyetechGrabber::findLibrary() {
    if (!loadQuickLink2()) {
        qCDebug(lcEyetech, "QL not loaded");
        return;
    }
    qCDebug(lcEyetech) << "Quick Link 2 loaded. Version:" << libraryVersion().constData();
    deviceId_ = selectDevice(deviceSettingsFile);
    if (deviceId_ == 0)
        qCDebug(lcEyetech, "Device not found");
}

void EyetechGrabber::buildPolling() {
    QTimer::singleShot(firstFrameMs, this, [this] { Q_EMIT newFrame(lastFrame_); });
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

void EyetechGrabber::takeTimings() {
    EyetechCalibrationWidget::timings = {eyetechSettings_->getCalibrationAnimationMs(),
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
    if (quicklink2::QLDevice_Start(deviceId_) == 0)
        return true;
    qCDebug(lcEyetech, "Device not started successfully!");
    return false;
}

void EyetechGrabber::stop() {
    // Not cleared: that is intended. A device that stands still is started again, by stop() too.
    startRequested_ = true;
    quicklink2::QLDevice_Stop(deviceId_);
    closeCalibrationWidget();
}

void EyetechGrabber::poll() {
    if (deviceId_ == 0 && !findDevice())
        return;
    const int status = deviceStatus();
    setConnected(status == ql_device_stopped || status == ql_device_running);
    if (status == ql_device_stopped && startRequested_)
        quicklink2::QLDevice_Start(deviceId_);
    else if (status == ql_device_running && !frameAwaited_)
        fetchFrame();
}

// Only the count is looked at: that is intended. A call that fails leaves it as it was, so that selectDevice() tells of
// the failure each time.
bool EyetechGrabber::findDevice() {
    std::array<int, mostDevices> devices{};
    int count = mostDevices;
    quicklink2::QLDevice_Enumerate(&count, devices.data());
    if (count == 0)
        return false;
    deviceId_ = selectDevice(deviceSettingsFile);
    return true;
}

int EyetechGrabber::deviceStatus() const {
    constexpr int unknown = 0;
    int status = unknown;
    return quicklink2::QLDevice_GetStatus(deviceId_, &status) == 0 ? status : unknown;
}

void EyetechGrabber::fetchFrame() {
    frameAwaited_ = true;
    frameFuture_ = QtConcurrent::run(frameOf, deviceId_);
    frameWatcher_.setFuture(frameFuture_);
}

void EyetechGrabber::takeFrame() {
    frameAwaited_ = false;
    lastFrame_ = frameWatcher_.result();
    warnOfLostImage();
    Q_EMIT newData(lastFrame_.gazeValid(), static_cast<double>(lastFrame_.x()), static_cast<double>(lastFrame_.y()));
    Q_EMIT newFrame(lastFrame_);
    addSample(sampleOf(lastFrame_));
}

void EyetechGrabber::warnOfLostImage() {
    if (!lostImageSeen_ && lastFrame_.lacksImage())
        qCWarning(lcEyetech, "The device sends camera images of a size that cannot be, or without pixels");
    lostImageSeen_ = lastFrame_.lacksImage();
}

EyeTrackingSample EyetechGrabber::sampleOf(const QLFrameData &frame) const {
    const QLFrameData::Eye left = frame.leftEye();
    const QLFrameData::Eye right = frame.rightEye();
    EyeTrackingSample sample;
    sample.timestamp = QDateTime::currentMSecsSinceEpoch();
    sample.valid = frame.gazeValid();
    sample.l_valid = left.found;
    sample.r_valid = right.found;
    sample.x = frame.x();
    sample.y = frame.y();
    sample.l_x = left.x;
    sample.l_y = left.y;
    sample.r_x = right.x;
    sample.r_y = right.y;
    const QSize area = calibratedArea().size();
    sample.calculatePixels(area.width(), area.height());
    sample.l_pupil_x = truncatedToPixel(left.pupilX);
    sample.l_pupil_y = truncatedToPixel(left.pupilY);
    sample.r_pupil_x = truncatedToPixel(right.pupilX);
    sample.r_pupil_y = truncatedToPixel(right.pupilY);
    sample.l_pupil_mm = left.pupil_mm;
    sample.r_pupil_mm = right.pupil_mm;
    sample.focus = frame.focus();
    sample.distance_cm = frame.distance_cm();
    return sample;
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
        [this](int calibrationId) {
            quicklink2::QLDevice_ApplyCalibration(deviceId_, calibrationId);
            Q_EMIT calibrated();
        },
        Qt::DirectConnection);
    // Queued: not within the click on the button that asks for it.
    connect(calibrationWidget_.get(), &EyetechCalibrationWidget::calibrationWanted, this,
            &EyetechGrabber::runCalibration, Qt::QueuedConnection);
}

void EyetechGrabber::closeCalibrationWidget() {
    if (calibrationWidget_)
        calibrationWidget_->close();
}

void EyetechGrabber::runCalibration() {
    if (calibrating_)
        return;
    const QPointer<EyetechGrabber> self(this);
    calibrating_ = true;
    while (self && calibrationWidget_ && calibrationWidget_->isCalibrationWanted()) {
        const std::shared_ptr<EyetechCalibrationWidget> widget = calibrationWidget_;
        widget->startCalibration();
    }
    if (self)
        calibrating_ = false;
}

void EyetechGrabber::stopCalibration() {
    Q_EMIT stopCalibrationRequest();
}
