#include "core/eyetracker_interface.h"

#include "core/eye_tracking_csv.h"
#include "core/pixels.h"
#include "toolkit/base/text_helper.h"

#include <QDateTime>
#include <QDir>
#include <QGuiApplication>
#include <QScreen>
#include <QStandardPaths>
#include <algorithm>
#include <chrono>

namespace {

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

// Discards a running recording: the record file is written only when the user stops the recording.
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
    recording_.exchange(std::make_unique<EyeTrackingCSV>(path, false));
    Q_EMIT recordStarted();
    return true;
}

bool EyetrackerInterface::stopRecord() {
    // The file is written without the lock, so that addSample() never waits for the disk.
    const Recording recording = recording_.exchange(nullptr);
    if (!recording)
        return false;
    recording->saveFile();
    Q_EMIT recordStopped(recording->currentFilePath());
    return true;
}

QList<EyeTrackingSample> EyetrackerInterface::getSamples() {
    return samples_.with([](SampleWindow &window) { return window.samples(); });
}

EyeTrackingSample EyetrackerInterface::getLastSample() {
    return lastNumberedSample().sample;
}

SamplesSince EyetrackerInterface::samplesSince(quint64 number) const {
    return samples_.with([number](const SampleWindow &window) { return window.samplesSince(number); });
}

NumberedSample EyetrackerInterface::lastNumberedSample() const {
    return samples_.with([](const SampleWindow &window) { return window.last(); });
}

void EyetrackerInterface::addSample(const EyeTrackingSample &sample) {
    // Read before the signal is emitted, because its receivers may take a while.
    const auto arrival = std::chrono::steady_clock::now();
    Q_EMIT newSample(sample);
    // Destroyed after the lock is released, because the list has a heap node for each sample.
    const QList<EyeTrackingSample> outdated =
        samples_.with([&](SampleWindow &window) { return window.add(sample, arrival); });
    recording_.with([&](const Recording &recording) {
        if (recording)
            recording->addSample(sample);
    });
}

bool EyetrackerInterface::isRecording() const {
    return recording_.with([](const Recording &recording) { return recording != nullptr; });
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
    return {pixels::fromPercent(bounded(x), size.width()), pixels::fromPercent(bounded(y), size.height())};
}
