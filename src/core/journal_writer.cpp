#include "core/journal_writer.h"

#include "toolkit/base/text_helper.h"
#include "toolkit/platform/file_sync.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QRegularExpression>
#include <exception>
#include <utility>

namespace {

Q_LOGGING_CATEGORY(lcJournal, "ocela.journal")

/// The maximum number of rows, and of markers. Copying a slice takes a few microseconds, for which a tracker may have
/// to wait.
constexpr std::size_t maxSliceCount = 64;
/// A tracker that delivers very fast would otherwise wait for many slices in a row. 64 rows in 1 ms are enough for
/// every tracker.
constexpr std::chrono::milliseconds slicePause{1};

QString folderName(const JournalInfo &info) {
    QString tracker = info.tracker;
    tracker.replace(QRegularExpression("[^A-Za-z0-9]+"), "-");
    return TextHelper::DateTimeFileString(QDateTime::fromMSecsSinceEpoch(info.startUtcMs), true) + '_' + tracker;
}

}  // namespace

JournalWriter::JournalWriter(QString journalsFolder, JournalInfo info, std::string header, Source source,
                             const ArrivalClock &clock, ClockWatch::SystemNow systemNow)
    : journalsFolder_(std::move(journalsFolder)),
      // Not in the journal's thread, because ThreadSanitizer does not see the lock of the system's time zone.
      folderName_(folderName(info)),
      header_(std::move(header)),
      source_(std::move(source)),
      clock_(clock),
      info_(std::move(info)),
      clockWatch_(std::move(systemNow)),
      thread_([this] { run(); }) {}

JournalWriter::~JournalWriter() {
    stop();
}

void JournalWriter::stop() {
    if (!thread_.joinable())
        return;
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        stopping_ = true;
    }
    stopRequest_.notify_one();
    thread_.join();
}

bool JournalWriter::waitForStop(std::chrono::milliseconds timeout) {
    std::unique_lock<std::mutex> lock(mutex_);
    return stopRequest_.wait_for(lock, timeout, [this] { return stopping_; });
}

void JournalWriter::run() {
    do {
        step();
    } while (!waitForStop(takeInterval));
    nextTry_ = Clock::now();
    step();
    try {
        syncNow();
    } catch (const std::exception &error) {
        pause(error.what());
    }
}

void JournalWriter::step() {
    try {
        watchSystemClock();
        if (paused_ && Clock::now() < nextTry_)
            return;
        QString problem = finishSync();
        if (problem.isEmpty())
            problem = takeRows();
        if (problem.isEmpty())
            startSyncIfDue();
        else
            pause(problem);
    } catch (const std::exception &error) {
        pause(error.what());
    }
}

void JournalWriter::watchSystemClock() {
    if (clockWatch_.hasStepped())
        info_.systemClockStepped = true;
    // Windows does not replace the description while it is being synced.
    if (!info_.systemClockStepped || clockStepIsStored_ || sync_.valid())
        return;
    // Windows does not replace the description while another program reads it, either. Each step() tries again, and
    // saving() reports a failure that lasts.
    clockStepIsStored_ = !folder_ || folder_->writeInfo(info_).isEmpty();
}

QString JournalWriter::takeRows() {
    if (!tables_) {
        QString problem = create();
        if (!problem.isEmpty())
            return problem;
    }
    if (mustGoBack_) {
        QString problem = tables_->goBack(syncedEnd_);
        if (!problem.isEmpty())
            return problem;
        mustGoBack_ = false;
    }
    for (;;) {
        const RecordSlice slice = source_(tables_->end().rowCount, tables_->end().markerCount, maxSliceCount);
        QString problem = tables_->append(slice);
        if (!problem.isEmpty() || (slice.origins.size() < maxSliceCount && slice.markers.size() < maxSliceCount))
            return problem;
        (void)waitForStop(slicePause);
    }
}

QString JournalWriter::create() {
    JournalFolder::Created created = JournalFolder::create(journalsFolder_, folderName_, info_);
    if (!created.folder)
        return created.problem;
    JournalTables &tables = tables_.emplace(*created.folder, clock_);
    QString problem = tables.begin(header_);
    if (!problem.isEmpty()) {
        tables_.reset();
        created.folder->remove();
        return problem;
    }
    folder_ = std::move(created.folder);
    // The header counts as synced, although it is not synced yet. Only a power failure can lose it, and an empty table
    // has nothing to recover.
    syncedEnd_ = tables.end();
    nextSync_ = Clock::now() + syncInterval;
    return QString();
}

QString JournalWriter::finishSync() {
    using namespace std::chrono_literals;
    if (!sync_.valid() || sync_.wait_for(0s) != std::future_status::ready)
        return QString();
    QString problem = sync_.get();
    if (problem.isEmpty()) {
        syncedEnd_ = syncingEnd_;
        if (paused_)
            resume();
    }
    return problem;
}

void JournalWriter::startSyncIfDue() {
    if (sync_.valid() || (!paused_ && Clock::now() < nextSync_))
        return;
    syncingEnd_ = tables_->end();
    nextSync_ = Clock::now() + syncInterval;
    sync_ = std::async(std::launch::async, &JournalFolder::sync, folder_->path());
}

void JournalWriter::syncNow() {
    if (sync_.valid())
        sync_.wait();
    QString problem = finishSync();
    if (paused_)
        return;
    if (problem.isEmpty() && tables_ && !mustGoBack_)
        problem = JournalFolder::sync(folder_->path());
    if (!problem.isEmpty())
        pause(problem);
}

void JournalWriter::pause(const QString &reason) {
    if (sync_.valid() && sync_.get().isEmpty())
        syncedEnd_ = syncingEnd_;
    // After a failed sync, the system may have dropped any row that was not synced before.
    mustGoBack_ = tables_.has_value();
    nextTry_ = Clock::now() + retryInterval;
    if (std::exchange(paused_, true))
        return;
    const QString path = folder_ ? folder_->path() : journalsFolder_;
    qCWarning(lcJournal).noquote() << "The journal of the recording pauses. The recording continues in memory."
                                   << QDir::toNativeSeparators(path) + ": " + reason;
}

void JournalWriter::resume() {
    paused_ = false;
    qCInfo(lcJournal).noquote() << "The journal of the recording continues:"
                                << QDir::toNativeSeparators(folder_->path());
}

void JournalWriter::saving(const QString &path, std::size_t rowCount) {
    stop();
    info_.savingPath = QFileInfo(path).absoluteFilePath();
    info_.savingRowCount = rowCount;
    writePhase(JournalPhase::Saving);
}

void JournalWriter::saved() {
    // Until the name of the record file is on the disk, the journal is needed.
    if (file_sync::syncFolder(QFileInfo(info_.savingPath).path()))
        end(JournalPhase::Saved);
}

void JournalWriter::discarded() {
    stop();
    end(JournalPhase::Discarded);
}

void JournalWriter::writePhase(JournalPhase phase) {
    if (!folder_)
        return;
    info_.phase = phase;
    QString problem = folder_->writeInfo(info_);
    if (!problem.isEmpty())
        qCWarning(lcJournal).noquote() << "Cannot write"
                                       << QDir::toNativeSeparators(folder_->infoPath()) + ": " + problem;
}

void JournalWriter::end(JournalPhase phase) {
    if (!folder_)
        return;
    // Without room for the description, removing the rows has the same effect.
    writePhase(phase);
    tables_.reset();
    folder_->remove();
    folder_.reset();
}
