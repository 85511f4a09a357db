#include "core/journal_recovery.h"

#include "core/journal_folder.h"
#include "core/journal_rows.h"
#include "core/recovered_companions.h"
#include "toolkit/base/file_names.h"
#include "toolkit/base/file_utilities.h"
#include "toolkit/platform/file_sync.h"

#include <QDir>
#include <QFileInfo>
#include <QLoggingCategory>
#include <exception>
#include <memory>
#include <optional>
#include <utility>

namespace {

Q_LOGGING_CATEGORY(lcRecovery, "ocela.recovery")

constexpr char damagedMark[] = ".damaged";
constexpr int maxNameCount = 100'000;

QString native(const QString &path) {
    return QDir::toNativeSeparators(path);
}

/// Removes a file at the end of its scope, unless it was renamed.
class TemporaryName {
public:
    explicit TemporaryName(QString path) : path_(std::move(path)) {}
    ~TemporaryName() { QFile::remove(path_); }
    Q_DISABLE_COPY(TemporaryName)

    const QString &path() const { return path_; }

private:
    const QString path_;
};

/// Recovers one journal, which it has locked.
class Recovery {
public:
    Recovery(JournalFolder &folder, const QString &recordsFolder, const JournalRecovery::Recovered &recovered,
             const std::atomic<bool> &stopping)
        : folder_(folder), recordsFolder_(recordsFolder), recovered_(recovered), stopping_(stopping) {}

    void run() {
        if (!readInfo() || finishIfEnded())
            return;
        const QStringList folders{QFileInfo(info_.targetPath).path(), recordsFolder_};
        for (const QString &folder : folders) {
            if (recoverTo(folder) != Outcome::CannotWrite)
                return;
        }
        qCWarning(lcRecovery).noquote() << "Cannot recover the recording in"
                                        << native(folder_.path()) + ": " + problem_ + ". The next start tries again";
    }

private:
    enum class Outcome { Done, CannotWrite };

    /// Returns whether the description can be used. Otherwise the journal has been dealt with.
    bool readInfo() {
        QFile file(folder_.infoPath());
        if (!file.exists() && !QFile::exists(folder_.rowsPath())) {
            // Not a journal, or a journal that was only partly removed.
            folder_.removeRest();
            return false;
        }
        if (file.exists() && !file.open(QIODevice::ReadOnly)) {
            qCWarning(lcRecovery).noquote() << "Cannot read" << native(file.fileName()) + ": " + file.errorString();
            return false;
        }
        const ParsedJournalInfo parsed = parseJournalInfo(file.isOpen() ? file.readAll() : QByteArray());
        file.close();
        info_ = parsed.info;
        if (parsed.outcome == ParsedJournalInfo::Outcome::UnknownFormat) {
            qCWarning(lcRecovery).noquote() << "Another version of the program wrote the recording in"
                                            << native(folder_.path()) + ". Start that version to recover it";
        } else if (parsed.outcome == ParsedJournalInfo::Outcome::Damaged) {
            keepAsDamaged("its description cannot be read");
        }
        return parsed.outcome == ParsedJournalInfo::Outcome::Ok;
    }

    /// Returns whether there is nothing to recover. The journal has then been dealt with.
    bool finishIfEnded() {
        const bool isEnded = info_.phase == JournalPhase::Saved || info_.phase == JournalPhase::Discarded;
        if (isEnded || !QFile::exists(folder_.rowsPath())) {
            folder_.remove();
            return true;
        }
        if (info_.phase != JournalPhase::Saving || !isSaved())
            return false;
        finish();
        return true;
    }

    /// Returns whether the file that was about to be saved exists: it begins with the rows of the journal, and has the
    /// number of rows that the description names.
    bool isSaved() const {
        JournalRows rows(folder_.rowsPath(), JournalRows::recordHeader());
        return rows.rowCountOfContinuation(info_.savingPath) == info_.savingRowCount;
    }

    Outcome recoverTo(const QString &folder) {
        if (!QDir(folder).exists())
            return fail(native(folder) + ": the folder does not exist");
        // The name belongs to this journal, so a file that an interrupted recovery has left is overwritten.
        const TemporaryName temporary(folder + "/." + QFileInfo(folder_.path()).fileName() + ".recovering");
        const std::optional<Outcome> copied = copyRows(temporary.path());
        if (copied)
            return *copied;
        return giveName(temporary.path(), folder);
    }

    /// Returns std::nullopt if the rows have been copied, and otherwise the outcome.
    std::optional<Outcome> copyRows(const QString &path) {
        const std::optional<JournalRows::Result> end = copyLines(path);
        if (!end || *end == JournalRows::Result::ReadFailed)
            return Outcome::CannotWrite;
        if (*end == JournalRows::Result::Lines)
            return Outcome::Done;
        if (*end == JournalRows::Result::Damaged) {
            keepAsDamaged(QString("its row %1 is damaged").arg(rowCount_ + 1));
            return Outcome::Done;
        }
        if (rowCount_ == 0 && !RecoveredCompanions(folder_, info_, stopping_).hasMarkers()) {
            folder_.remove();
            return Outcome::Done;
        }
        return file_sync::syncFile(path) ? std::nullopt : std::optional(fail(native(path) + ": " + qt_error_string()));
    }

    /// Returns how the rows of the journal end: Lines if the copy was interrupted, std::nullopt if the file cannot be
    /// written. Closes the rows, because Windows does not remove or rename a journal with an open file.
    std::optional<JournalRows::Result> copyLines(const QString &path) {
        QFile file(path);
        bool canWrite = file.open(QIODevice::WriteOnly | QIODevice::Unbuffered);
        JournalRows rows(folder_.rowsPath(), JournalRows::recordHeader());
        JournalRows::Result result = rows.read();
        for (; canWrite && !stopping_ && result == JournalRows::Result::Lines; result = rows.read()) {
            const std::string_view lines = rows.lines();
            canWrite = FileUtilities::writeAll(file, lines.data(), static_cast<qint64>(lines.size()));
        }
        rowCount_ = rows.rowCount();
        if (result == JournalRows::Result::ReadFailed)
            (void)fail(native(folder_.rowsPath()) + ": " + rows.problem());
        if (!canWrite)
            (void)fail(native(path) + ": " + file.errorString());
        return canWrite ? std::optional(result) : std::nullopt;
    }

    Outcome giveName(const QString &temporary, const QString &folder) {
        const QFileInfo target(info_.targetPath);
        const QString suffix = target.suffix().isEmpty() ? QString() : '.' + target.suffix();
        const QString path = folder + '/' + target.completeBaseName() + "_recovered" + suffix;
        for (int number = 0; number < maxNameCount; ++number) {
            const QString candidate = number == 0 ? path : file_names::numbered(path, number);
            if (QFileInfo::exists(candidate))
                continue;
            if (const QString problem = enterSaving(candidate); !problem.isEmpty())
                return fail(native(folder_.infoPath()) + ": " + problem);
            const file_names::Renaming renaming = file_names::renameIfFree(temporary, candidate);
            if (renaming.outcome == file_names::Renaming::Outcome::NameTaken)
                continue;
            if (!renaming.isDone())
                return fail(native(candidate) + ": " + renaming.reason);
            qCInfo(lcRecovery).noquote() << "Recovered" << rowCount_
                                         << "samples of an interrupted recording:" << native(candidate);
            finish();
            if (recovered_)
                recovered_(candidate);
            return Outcome::Done;
        }
        return fail(native(path) + ": all numbered names are taken");
    }

    /// Writes the companions of the saved record file, and removes the journal. Unless the names are on the disk,
    /// the journal is kept, and the next start does the rest.
    void finish() {
        if (!RecoveredCompanions(folder_, info_, stopping_).save() ||
            !file_sync::syncFolder(QFileInfo(info_.savingPath).path()))
            return;
        info_.phase = JournalPhase::Saved;
        (void)folder_.writeInfo(info_);
        folder_.remove();
    }

    /// Stores that the recovered file is about to get the name `path`. Returns the problem, or an empty text.
    QString enterSaving(const QString &path) {
        info_.phase = JournalPhase::Saving;
        info_.isRecovered = true;
        info_.savingPath = path;
        info_.savingRowCount = rowCount_;
        return folder_.writeInfo(info_);
    }

    Outcome fail(const QString &problem) {
        problem_ = problem;
        return Outcome::CannotWrite;
    }

    void keepAsDamaged(const QString &reason) {
        const QString path = folder_.path();
        const QString kept = folder_.keepAsDamaged();
        qCWarning(lcRecovery).noquote() << "Cannot recover the recording in"
                                        << native(kept.isEmpty() ? path : kept) + ": " + reason +
                                               ". Its file rows.csv may still have most samples";
    }

    JournalFolder &folder_;
    const QString &recordsFolder_;
    const JournalRecovery::Recovered &recovered_;
    const std::atomic<bool> &stopping_;
    JournalInfo info_;
    quint64 rowCount_ = 0;
    QString problem_;
};

void recoverAll(const QString &journalsFolder, const QString &recordsFolder,
                const JournalRecovery::Recovered &recovered, const std::atomic<bool> &stopping) {
    for (const QFileInfo &entry : QDir(journalsFolder).entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name)) {
        if (stopping)
            return;
        if (entry.fileName().contains(damagedMark))
            continue;
        if (const auto folder = JournalFolder::open(entry.absoluteFilePath()))
            Recovery(*folder, recordsFolder, recovered, stopping).run();
    }
}

}  // namespace

JournalRecovery::JournalRecovery(const QString &journalsFolder, const QString &recordsFolder, Recovered recovered)
    : thread_([this, journalsFolder, recordsFolder, recovered = std::move(recovered)] {
          try {
              recoverAll(journalsFolder, recordsFolder, recovered, stopping_);
          } catch (const std::exception &error) {
              qCWarning(lcRecovery) << "Recovery ended before all journals were examined:" << error.what();
          }
      }) {}

JournalRecovery::~JournalRecovery() {
    stopping_ = true;
    waitForDone();
}

void JournalRecovery::waitForDone() {
    if (thread_.joinable())
        thread_.join();
}
