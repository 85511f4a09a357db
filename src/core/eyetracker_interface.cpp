#include "core/eyetracker_interface.h"

#include "core/eye_tracking_csv.h"
#include "core/pixels.h"
#include "toolkit/text_helper.h"

#include <QDateTime>
#include <QDir>
#include <QGuiApplication>
#include <QScreen>
#include <QStandardPaths>
#include <algorithm>
#include <chrono>

namespace {

qint64 steadyMs() {
    using namespace std::chrono;
    return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

QString defaultRecordPath() {
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    const QString file = TextHelper::DateTimeFileString(QDateTime(), true) + "_ocela.csv";
    return QStringList{folder, "Ocela", file}.join(QDir::separator());
}

}  // namespace

EyetrackerInterface::EyetrackerInterface(const QString &dataFolder, QObject *parent)
    : QObject(parent), dataFolder_(dataFolder) {
    qRegisterMetaType<EyeTrackingSample>("EyeTrackingSample");
    qRegisterMetaType<QList<EyeTrackingSample>>("QList<EyeTrackingSample>");
}

// A record that still runs is dropped unsaved: it is written when the user stops it, not behind the user's
// back.
EyetrackerInterface::~EyetrackerInterface() = default;

void EyetrackerInterface::calibrateScreen(int screenIndex) {
    const QList<QScreen *> screens = QGuiApplication::screens();
    if (screenIndex >= 0 && screenIndex < screens.size())
        calibrate(screens[screenIndex]->geometry());
}

void EyetrackerInterface::setCalibratedArea(int x, int y, int w, int h) {
    setCalibratedArea(QRect(x, y, w, h));
}

void EyetrackerInterface::setCalibratedArea(QRect area) {
    calibratedArea_.exchange(area);
}

bool EyetrackerInterface::startRecord(QString path) {
    stopRecord();
    if (path.isEmpty())
        path = defaultRecordPath();
    recordFile_.exchange(std::make_unique<EyeTrackingCSV>(path, false));
    Q_EMIT recordStarted();
    return true;
}

bool EyetrackerInterface::stopRecord() {
    // Taken out first: samples must not wait for the disk.
    const Record record = recordFile_.exchange(nullptr);
    if (!record)
        return false;
    record->saveFile();
    Q_EMIT recordStopped(record->currentFilePath());
    return true;
}

QList<EyeTrackingSample> EyetrackerInterface::getSamples() {
    return samples_.with([](SampleWindow &window) { return window.samples(); });
}

EyeTrackingSample EyetrackerInterface::getLastSample() {
    return samples_.with([](const SampleWindow &window) { return window.last(); });
}

void EyetrackerInterface::addSample(const EyeTrackingSample &sample) {
    Q_EMIT newSample(sample);
    // The list that goes has a node a sample; nobody need wait for the lock while they are freed.
    const QList<EyeTrackingSample> outdated =
        samples_.with([&](SampleWindow &window) { return window.add(sample, steadyMs()); });
    recordFile_.with([&](const Record &record) {
        if (record)
            record->addSample(sample);
    });
}

bool EyetrackerInterface::isRecording() {
    return recordFile_.with([](const Record &record) { return record != nullptr; });
}

void EyetrackerInterface::setConnected(bool value) {
    if (connected_.exchange(value) == value)
        return;
    if (value)
        Q_EMIT connected();
    else
        Q_EMIT disconnected();
    Q_EMIT connectedChanged(value);
}

QPoint EyetrackerInterface::percentToPixels(float x, float y, bool clamp) const {
    const QSize size = calibratedArea().size();
    const auto bounded = [clamp](float percent) { return clamp ? std::clamp(percent, 0.0F, 100.0F) : percent; };
    return {percentToPixel(bounded(x), size.width()), percentToPixel(bounded(y), size.height())};
}
