#include "core/journal_recovery.h"

#include "core/eye_tracking_csv.h"
#include "core/journal_folder.h"
#include "core/journal_rows.h"
#include "toolkit/base/file_names.h"
#include "toolkit/base/file_utilities.h"
#include "toolkit/platform/file_sync.h"

#include <QDir>
#include <QFileInfo>
#include <QLoggingCategory>
#include <exception>
#include <memory>
#include <optional>

namespace {

Q_LOGGING_CATEGORY(lcRecovery, "ocela.recovery")

constexpr char damagedMark[] = ".damaged";
constexpr int maxNameCount = 100'000;

QByteArray recordHeader() {
    return QByteArray::fromStdString(EyeTrackingCSV(QString(), false).headerLine());
}

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
    Recovery(JournalFolder &folder, const QString &recordsFolder, const std::atomic<bool> &stopping)
        : folder_(folder), recordsFolder_(recordsFolder), stopping_(stopping) {}

    void run() {
        if (!readInfo() || removeIfFinished())
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
            QFile::remove(folder_.path() + "/lock");
            QDir().rmdir(folder_.path());
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

    bool removeIfFinished() {
        const bool isEnded = info_.phase == JournalPhase::Saved || info_.phase == JournalPhase::Discarded;
        const bool isFinished =
            isEnded || !QFile::exists(folder_.rowsPath()) || (info_.phase == JournalPhase::Saving && isSaved());
        if (isFinished)
            folder_.remove();
        return isFinished;
    }

    /// Returns whether the file that was about to be saved exists: it begins with the rows of the journal, and has the
    /// number of rows that the description names.
    bool isSaved() const {
        QFile file(info_.savingPath);
        if (!file.open(QIODevice::ReadOnly))
            return false;
        JournalRows rows(folder_.rowsPath(), recordHeader());
        JournalRows::Result result = rows.read();
        for (; result == JournalRows::Result::Lines; result = rows.read()) {
            const std::string_view lines = rows.lines();
            if (file.read(static_cast<qint64>(lines.size())) !=
                QByteArray::fromRawData(lines.data(), static_cast<int>(lines.size())))
                return false;
        }
        quint64 rowCount = rows.rowCount();
        while (!file.atEnd()) {
            file.readLine();
            ++rowCount;
        }
        return result == JournalRows::Result::End && rowCount == info_.savingRowCount &&
               file_sync::syncFolder(QFileInfo(info_.savingPath).path());
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
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
            return fail(native(path) + ": " + file.errorString());
        auto rows = std::make_unique<JournalRows>(folder_.rowsPath(), recordHeader());
        JournalRows::Result result = rows->read();
        for (; result == JournalRows::Result::Lines; result = rows->read()) {
            if (stopping_)
                return Outcome::Done;
            if (!FileUtilities::writeAll(file, rows->lines().data(), static_cast<qint64>(rows->lines().size())))
                return fail(native(path) + ": " + file.errorString());
        }
        file.close();
        rowCount_ = rows->rowCount();
        const QString problem = rows->problem();
        rows.reset();  // Windows does not remove or rename a journal with an open file.
        if (result == JournalRows::Result::ReadFailed)
            return fail(native(folder_.rowsPath()) + ": " + problem);
        if (result == JournalRows::Result::Damaged) {
            keepAsDamaged(QString("its row %1 is damaged").arg(rowCount_ + 1));
            return Outcome::Done;
        }
        if (rowCount_ == 0) {
            folder_.remove();
            return Outcome::Done;
        }
        if (!file_sync::syncFile(path))
            return fail(native(path) + ": " + qt_error_string());
        return std::nullopt;
    }

    Outcome giveName(const QString &temporary, const QString &folder) {
        const QFileInfo target(info_.targetPath);
        const QString suffix = target.suffix().isEmpty() ? QString() : '.' + target.suffix();
        const QString path = folder + '/' + target.completeBaseName() + "_recovered" + suffix;
        for (int number = 0; number < maxNameCount; ++number) {
            const QString candidate = number == 0 ? path : file_names::numbered(path, number);
            if (QFileInfo::exists(candidate))
                continue;
            if (const QString problem = enter(JournalPhase::Saving, candidate); !problem.isEmpty())
                return fail(native(folder_.infoPath()) + ": " + problem);
            const file_names::Renaming renaming = file_names::renameIfFree(temporary, candidate);
            if (renaming.outcome == file_names::Renaming::Outcome::NameTaken)
                continue;
            return renaming.isDone() ? finish(candidate) : fail(native(candidate) + ": " + renaming.reason);
        }
        return fail(native(path) + ": all numbered names are taken");
    }

    Outcome finish(const QString &path) {
        qCInfo(lcRecovery).noquote() << "Recovered" << rowCount_
                                     << "samples of an interrupted recording:" << native(path);
        // Unless the name is on the disk, the journal is kept. The next start finds the file complete, or recovers
        // again.
        if (file_sync::syncFolder(QFileInfo(path).path())) {
            (void)enter(JournalPhase::Saved, path);
            folder_.remove();
        }
        return Outcome::Done;
    }

    QString enter(JournalPhase phase, const QString &path) {
        info_.phase = phase;
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
    const std::atomic<bool> &stopping_;
    JournalInfo info_;
    quint64 rowCount_ = 0;
    QString problem_;
};

void recoverAll(const QString &journalsFolder, const QString &recordsFolder, const std::atomic<bool> &stopping) {
    for (const QFileInfo &entry : QDir(journalsFolder).entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name)) {
        if (stopping)
            return;
        if (entry.fileName().contains(damagedMark))
            continue;
        if (const auto folder = JournalFolder::open(entry.absoluteFilePath()))
            Recovery(*folder, recordsFolder, stopping).run();
    }
}

}  // namespace

JournalRecovery::JournalRecovery(const QString &journalsFolder, const QString &recordsFolder)
    : thread_([this, journalsFolder, recordsFolder] {
          try {
              recoverAll(journalsFolder, recordsFolder, stopping_);
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
