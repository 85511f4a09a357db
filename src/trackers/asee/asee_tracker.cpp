#include "trackers/asee/asee_tracker.h"

#include "toolkit/base/file_utilities.h"
#include "toolkit/platform/app_helper.h"
#include "trackers/asee/asee_calibration_screen.h"
#include "trackers/asee/asee_camera_view.h"
#include "trackers/asee/asee_library.h"
#include "trackers/asee/asee_live_objects.h"
#include "trackers/asee/asee_log.h"
#include "trackers/asee/asee_record_reader.h"
#include "trackers/asee/asee_settings.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <array>

namespace {

constexpr char coefficientFile[] = "coefficient.dat";

constexpr const char *installedFiles[] = {
    "config/detectEye.mnn", "config/LeftAndRightEye_cls.mnn", "config/openandcloseEye_cls.mnn",
    "config/pupildet.mnn",  "config/pupildet_radius.mnn",     coefficientFile,
};

void copyFile(const QString &from, const QString &to) {
    QFile file(from);
    if (!file.copy(to)) {
        qCWarning(lcAsee).noquote() << "Cannot copy" << QDir::toNativeSeparators(from) << "to"
                                    << QDir::toNativeSeparators(to) + ":" << file.errorString();
        return;
    }
    // An installed file may be read-only, but a calibration replaces its copy.
    QFile::setPermissions(to, QFile::permissions(to) | QFileDevice::WriteOwner);
}

}  // namespace

aSeePro::aSeePro(const QString &dataFolder, QObject *parent)
    : EyetrackerInterface(dataFolder, parent),
      folder_(FileUtilities::FolderSlash(dataFolder)),
      settings_(new aSeeProSettings(dataFolder + QDir::separator() + "aSeeProSettings.xml", this)) {
    settings_->reload();
    setCalibratedArea(settings_->lastCalibratedArea());
    FileUtilities::createIfNotExists(folder_ + "config");
    copyInstalledFiles();
    aSeePro::stop();
    asee::LiveObjects<aSeePro>::add(this);
}

aSeePro::~aSeePro() {
    asee::LiveObjects<aSeePro>::remove(this);
    delete calibrationWidget_.load();
}

VTSettings *aSeePro::settings() {
    return settings_;
}

QWidget *aSeePro::createViewWidget() {
    return new aSeeProPreviewWidget(this);
}

QString aSeePro::connectionProblem() const {
    if (const auto &error = asee::libraryError())
        return libraryProblem(*error);
    switch (obstacle_.at) {
        case Obstacle::Connection:
            return tr("device cannot be opened (error %1)").arg(obstacle_.error);
        case Obstacle::Start:
            return tr("device does not start (error %1)").arg(obstacle_.error);
        case Obstacle::Coefficients:
        case Obstacle::None:
            break;
    }
    if (!QFileInfo::exists(folder_ + coefficientFile))
        return tr("not calibrated");
    return obstacle_.at == Obstacle::Coefficients ? tr("calibrated, reconnect to use it") : QString();
}

void aSeePro::copyInstalledFiles() const {
    const QString program = FileUtilities::FolderSlash(QCoreApplication::applicationDirPath());
    for (const char *name : installedFiles) {
        if (QFileInfo::exists(folder_ + name) || !QFileInfo::exists(program + name))
            continue;
        qCDebug(lcAsee) << "COPY" << name;
        copyFile(program + name, folder_ + name);
    }
}

bool aSeePro::start() {
    if (started_)
        return true;
    open();
    if (obstacle_.at == Obstacle::Connection)
        AppHelper::warningMessage(QString("code: %1").arg(obstacle_.error), "others error!!!", QMessageBox::Warning);
    return started_;
}

void aSeePro::reconnect() {
    closeCalibrationScreen();
    asee::loadLibrary();
    stop();
    open();
    qCInfo(lcAsee).noquote() << "Reconnect:" << obstacle_.logText();
}

QString aSeePro::Obstacle::logText() const {
    switch (at) {
        case Connection:
            return QString("the device cannot be opened, error %1").arg(error);
        case Start:
            return QString("the device does not start, error %1").arg(error);
        case Coefficients:
            return "the device is not calibrated";
        case None:
            break;
    }
    return "the device is open";
}

void aSeePro::open() {
    obstacle_ = tryToOpen();
    started_ = obstacle_.at == Obstacle::None;
    setConnected(started_);
}

aSeePro::Obstacle aSeePro::tryToOpen() {
    if (const int error = asee_sdk::_7i_device_connect(); error != 0)
        return {Obstacle::Connection, error};
    asee_sdk::_7i_set_image_callback(&aSeePro::onImage, this);
    asee_sdk::_7i_set_gaze_callback(&aSeePro::onGaze, this);
    const QByteArray config = QFile::encodeName(folder_ + "config");
    if (const int error = asee_sdk::_7i_start(config.constData()); error != 0)
        return {Obstacle::Start, error};
    return {startTracking() ? Obstacle::None : Obstacle::Coefficients, 0};
}

bool aSeePro::startTracking() {
    QFile file(folder_ + coefficientFile);
    if (!file.open(QIODevice::ReadOnly)) {
        qCDebug(lcAsee) << "COEF not found" << file.fileName();
        return false;
    }
    std::array<char, asee_sdk::coefficientBytes> coefficients{};
    file.read(coefficients.data(), coefficients.size());
    file.close();
    const int result = asee_sdk::_7i_start_tracking(coefficients.data());
    asee::print("_7i_start_tracking: %d\n", result);
    qCDebug(lcAsee) << "ASEE tracking started" << (result == 0);
    // The result is ignored: that is intended.
    return true;
}

void aSeePro::stop() {
    qCDebug(lcAsee) << "CALL aSee Stop";
    asee_sdk::_7i_stop();
    // The library unpacks files to this folder.
    FileUtilities::clearFolder(folder_ + "config/armeabi", false);
}

void aSeePro::calibrate(QRect area) {
    // The gaze of a calibration counts from the area that it was shown on.
    if (area != calibratedArea())
        closeCalibrationScreen();
    setCalibratedArea(area);
    settings_->setLastCalibratedArea(area);
    asee_sdk::_7i_set_calibration_mode(0);
    CalibrationWidget *screen = calibrationWidget_;
    if (!screen) {
        calibrationWidget_ = screen = new CalibrationWidget;
        screen->setDataFolder(folder_);
        connect(screen, &CalibrationWidget::ended, this, &EyetrackerInterface::calibrationFinished);
    }
    if (screen->isVisible()) {
        screen->bringToFront();
        return;
    }
    screen->setShowGaze(true);
    Q_EMIT calibrationStarted();
    screen->showOn(area);
}

void aSeePro::closeCalibrationScreen() {
    if (CalibrationWidget *screen = calibrationWidget_; screen && screen->isVisible())
        screen->close();
}

void aSeePro::stopCalibration() {
    CalibrationWidget *screen = calibrationWidget_.exchange(nullptr);
    if (!screen)
        return;
    screen->close();
    screen->deleteLater();
}

void aSeePro::onImage(const unsigned char *image, int size, int width, int height, long long stamp, void *context) {
    asee::LiveObjects<aSeePro>::with(context,
                                     [&](aSeePro &tracker) { tracker.takeImage(image, size, width, height, stamp); });
}

void aSeePro::onGaze(const void *record, void *context) {
    asee::LiveObjects<aSeePro>::with(context, [&](aSeePro &tracker) { tracker.takeGaze(record); });
}

void aSeePro::takeImage(const unsigned char *image, int size, int width, int height, long long stamp) {
    if (previewEnabled_ && frameBuffer_.store(image, size, width, height, stamp))
        Q_EMIT previewImageReady();
}

void aSeePro::takeGaze(const void *record) {
    if (!record)
        return;
    qCDebug(lcAseeSamples) << "New sample";
    const asee::GazeRecord gaze(record);
    addSample(asee::sampleOf(gaze, calibratedArea().size()));
    asee::LiveObjects<CalibrationWidget>::with(calibrationWidget_,
                                               [&](CalibrationWidget &screen) { screen.takeGaze(gaze); });
}
