#include "core/eyetracker_interface.h"

#include "core/eye_tracking_csv.h"
#include "core/markers.h"
#include "core/pixels.h"
#include "core/record_saving.h"
#include "core/sample_signal.h"

#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>
#include <QScreen>
#include <QStandardPaths>
#include <algorithm>
#include <chrono>
#include <iterator>
#include <new>
#include <utility>

namespace {

QString defaultRecordsFolder() {
    return QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation) + QDir::separator() + "Ocela";
}

}  // namespace

EyetrackerInterface::EyetrackerInterface(const QString &dataFolder, QObject *parent)
    : QObject(parent), dataFolder_(dataFolder) {
    qRegisterMetaType<CalibrationResult>("EyetrackerInterface::CalibrationResult");
    qRegisterMetaType<EyeTrackingSample>("EyeTrackingSample");
    qRegisterMetaType<QList<EyeTrackingSample>>("QList<EyeTrackingSample>");
}

// Drops a running recording and unsaved ones. MainWindow saves or discards them before it destroys a tracker.
EyetrackerInterface::~EyetrackerInterface() {
    // Not left to the member's destructor, because the journal takes the last rows under the member's lock.
    recording_.exchange(nullptr);
}

void EyetrackerInterface::reconnect() {
    stop();
    start();
}

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
    if (path.isEmpty())
        path = recordsFolder() + QDir::separator() + record_saving::defaultFileName();
    auto next = std::make_unique<EyeTrackingCSV>(path, false);
    if (createPhases_)
        next->setPhases(createPhases_(*next));
    // The new recording takes samples from now on, also while the old file is written.
    finish(recording_.exchange(std::move(next)));
    Q_EMIT recordStarted();
    return true;
}

bool EyetrackerInterface::stopRecord() {
    return finish(recording_.exchange(nullptr));
}

bool EyetrackerInterface::finish(Recording recording) {
    if (!recording)
        return false;
    // The file is written without the lock, so that addSample() never waits for the disk.
    finishedLength_ = recording->length();
    QString savedPath;
    if (save(*recording))
        savedPath = recording->currentFilePath();
    else
        unsaved_.push_back(std::move(recording));
    Q_EMIT recordStopped(savedPath);
    return true;
}

bool EyetrackerInterface::save(EyeTrackingCSV &recording) const {
    QStringList folders{defaultRecordsFolder()};
    if (!recordsFolder_.isEmpty())
        folders.prepend(recordsFolder_);
    recording.setFallbackFolders(folders);
    return recording.saveFile();
}

QString EyetrackerInterface::unsavedProblem() const {
    return unsaved_.empty() ? QString() : unsaved_.back()->saveProblem();
}

bool EyetrackerInterface::saveUnsaved(const QString &folder) {
    const auto staysUnsaved = [&](const Recording &recording) {
        if (!folder.isEmpty())
            recording->setPath(folder + '/' + QFileInfo(recording->currentFilePath()).fileName());
        return !save(*recording);
    };
    const auto end = std::stable_partition(unsaved_.begin(), unsaved_.end(), staysUnsaved);
    const std::vector<Recording> saved(std::make_move_iterator(end), std::make_move_iterator(unsaved_.end()));
    unsaved_.erase(end, unsaved_.end());
    for (const Recording &recording : saved)
        reportSaved(*recording);
    return unsaved_.empty();
}

bool EyetrackerInterface::saveUnsavedAs(const QString &unsavedPath, const QString &path) {
    const auto isWanted = [&](const Recording &recording) { return recording->currentFilePath() == unsavedPath; };
    const auto found = std::find_if(unsaved_.begin(), unsaved_.end(), isWanted);
    if (found == unsaved_.end())
        return true;
    (*found)->setPath(path);
    if (!save(**found))
        return false;
    const Recording saved = std::move(*found);
    unsaved_.erase(found);
    reportSaved(*saved);
    return true;
}

QString EyetrackerInterface::unsavedPath() const {
    return unsaved_.back()->currentFilePath();
}

void EyetrackerInterface::reportSaved(const EyeTrackingCSV &recording) {
    finishedLength_ = recording.length();
    Q_EMIT unsavedRecordSaved(recording.currentFilePath());
}

void EyetrackerInterface::discardRecord() {
    const Recording recording = recording_.exchange(nullptr);
    if (!recording)
        return;
    finishedLength_ = recording->length();
    recording->discard();
    Q_EMIT recordStopped(QString());
}

void EyetrackerInterface::discardUnsaved() {
    for (const Recording &recording : std::exchange(unsaved_, {}))
        recording->discard();
}

QList<EyeTrackingSample> EyetrackerInterface::getSamples() {
    return samples_.with([](SampleWindow &window) { return window.samples(); });
}

EyeTrackingSample EyetrackerInterface::getLastSample() {
    return lastNumberedSample().sample;
}

SamplesSince EyetrackerInterface::samplesSince(quint64 number, quint64 last) const {
    return samples_.with([&](const SampleWindow &window) { return window.samplesSince(number, last); });
}

std::optional<quint64> EyetrackerInterface::countBetween(quint64 number, quint64 last) const {
    return samples_.with([&](const SampleWindow &window) { return window.countBetween(number, last); });
}

NumberedSample EyetrackerInterface::lastNumberedSample() const {
    return samples_.with([](const SampleWindow &window) { return window.last(); });
}

void EyetrackerInterface::addSample(const EyeTrackingSample &sample) {
    // Read before the signal is emitted, because its receivers may take a while.
    const auto arrival = std::chrono::steady_clock::now();
    Q_EMIT newSample(sample);
    try {
        store(sample, arrival);
    } catch (const std::bad_alloc &) {
        if (!isRecording())
            throw;
        recording_.with([](const Recording &recording) {
            if (recording)
                recording->stopGrowing();
        });
    }
    if (sampleSignal_)
        sampleSignal_->set();
}

void EyetrackerInterface::store(const EyeTrackingSample &sample, std::chrono::steady_clock::time_point arrival) {
    // Destroyed after the lock is released, because the list has a heap node for each sample.
    QList<EyeTrackingSample> outdated;
    const NumberedSample entry = samples_.with([&](SampleWindow &window) {
        outdated = window.add(sample, arrival);
        return window.last();
    });
    recording_.with([&](const Recording &recording) {
        if (recording)
            recording->addNumbered(entry);
    });
}

QString EyetrackerInterface::recordsFolder() const {
    return recordsFolder_.isEmpty() ? defaultRecordsFolder() : recordsFolder_;
}

RecordSlice EyetrackerInterface::sliceOf(const EyeTrackingCSV &recording, std::size_t firstRow, std::size_t firstMarker,
                                         std::size_t maxCount) const {
    // The lock guards a running recording. A stopped one gets no more rows and markers.
    return recording_.with([&](const Recording &) { return recording.slice(firstRow, firstMarker, maxCount); });
}

bool EyetrackerInterface::isRecording() const {
    return recording_.with([](const Recording &recording) { return recording != nullptr; });
}

std::optional<RunningRecording> EyetrackerInterface::runningRecording() const {
    return recording_.with([](const Recording &recording) -> std::optional<RunningRecording> {
        if (!recording)
            return std::nullopt;
        return RunningRecording{recording->currentFilePath(), recording->clock().start(), recording->length(),
                                static_cast<int>(recording->markers().size())};
    });
}

bool EyetrackerInterface::addMarker(const Marker &marker) {
    const quint64 newestNumber = lastNumberedSample().number;
    try {
        return recording_.with([&](const Recording &recording) {
            return recording && recording->addMarker(marker.text, marker.time, newestNumber);
        });
    } catch (const std::bad_alloc &) {
        return false;
    }
}

RecordLength EyetrackerInterface::recordLength() const {
    return recording_.with([](const Recording &recording) { return recording ? recording->length() : RecordLength(); });
}

QString EyetrackerInterface::libraryProblem(const VendorLibrary::Error &error) {
    const QString name = QFileInfo(error.file).fileName();
    return error.reason == VendorLibrary::Reason::NotFound ? tr("library %1 not found").arg(name)
                                                           : tr("library %1 cannot be loaded, see Ocela.log").arg(name);
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
