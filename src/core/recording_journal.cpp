#include "core/recording_journal.h"

#include "core/companion_writer.h"
#include "core/eyetracker_interface.h"
#include "core/free_space.h"
#include "core/journal_writer.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QGuiApplication>
#include <QLoggingCategory>
#include <QScreen>

namespace {

Q_LOGGING_CATEGORY(lcRecord, "ocela.record")

/// The rate of most trackers, for the time before the first samples.
constexpr double typicalSamplesPerSecond = 150;

double samplesPerSecondOf(const EyetrackerInterface &tracker) {
    const std::vector<NumberedSample> samples = tracker.samplesSince(0).samples;
    if (samples.size() < 2)
        return typicalSamplesPerSecond;
    const std::chrono::duration<double> length = samples.back().arrival - samples.front().arrival;
    return length.count() > 0 ? static_cast<double>(samples.size() - 1) / length.count() : typicalSamplesPerSecond;
}

QRect screenOf(const QRect &area) {
    const QScreen *screen = QGuiApplication::screenAt(area.center());
    if (!screen)
        screen = QGuiApplication::primaryScreen();
    return screen ? screen->geometry() : QRect();
}

JournalInfo describe(const EyetrackerInterface &tracker, const EyeTrackingCSV &recording) {
    JournalInfo info;
    info.targetPath = QFileInfo(recording.currentFilePath()).absoluteFilePath();
    info.tracker = tracker.name();
    info.startUtcMs = recording.clock().startUtcMs();
    info.programVersion = QCoreApplication::applicationVersion();
    info.calibratedArea = tracker.calibratedArea();
    info.screen = screenOf(info.calibratedArea);
    return info;
}

void warnIfDiskIsLow(const EyetrackerInterface &tracker, const QString &target, const QString &journalsFolder) {
    const QString warning = free_space::warning(free_space::read(target, journalsFolder), samplesPerSecondOf(tracker));
    if (!warning.isEmpty())
        qCWarning(lcRecord).noquote() << warning;
}

}  // namespace

QString recording_journal::folderIn(const QString &dataFolder) {
    return dataFolder + "/journal";
}

void recording_journal::enable(EyetrackerInterface &tracker, const QString &journalsFolder,
                               const std::function<bool()> &isDescribed) {
    tracker.setCreatePhases([&tracker, journalsFolder,
                             isDescribed](const EyeTrackingCSV &recording) -> std::unique_ptr<RecordingPhases> {
        JournalInfo info = describe(tracker, recording);
        info.isDescribed = isDescribed();
        warnIfDiskIsLow(tracker, info.targetPath, journalsFolder);
        const auto take = [&tracker, &recording](std::size_t firstRow, std::size_t firstMarker, std::size_t maxCount) {
            return tracker.sliceOf(recording, firstRow, firstMarker, maxCount);
        };
        auto journal =
            std::make_unique<JournalWriter>(journalsFolder, info, recording.headerLine(), take, recording.clock());
        return std::make_unique<CompanionWriter>(recording, std::move(journal));
    });
}
