#pragma once

#include "core/eye_tracking_csv.h"
#include "core/guarded.h"
#include "core/journal_writer.h"

#include <QDir>
#include <QTemporaryDir>

/// A recording with a journal, as a tracker has it. The journal is destroyed first, because it reads the recording.
class JournaledRecording {
public:
    JournaledRecording(const QString &journalsFolder, const QString &targetPath,
                       const ClockWatch::SystemNow &systemNow = &std::chrono::system_clock::now)
        : journal_(std::make_unique<JournalWriter>(
              journalsFolder, info(targetPath), header(),
              [this](std::size_t firstRow, std::size_t firstMarker, std::size_t maxCount) {
                  return record_.with(
                      [=](const auto &record) { return record->slice(firstRow, firstMarker, maxCount); });
              },
              ArrivalClock(), systemNow)) {}

    static std::string header() { return EyeTrackingCSV(QString(), false).headerLine(); }

    static JournalInfo info(const QString &targetPath) {
        JournalInfo info;
        info.targetPath = targetPath;
        info.tracker = "aSee Pro";
        info.startUtcMs = 1700000000123;
        info.programVersion = "1.2.3";
        info.screen = QRect(0, 0, 1920, 1080);
        info.calibratedArea = QRect(10, 20, 300, 200);
        return info;
    }

    /// Adds samples with the timestamps and numbers `first` to `last`.
    void add(qint64 first, qint64 last) {
        for (qint64 number = first; number <= last; ++number) {
            NumberedSample entry{static_cast<quint64>(number), std::chrono::steady_clock::now(), {number}};
            entry.sample.l_valid = number % 2 != 0;
            record_.with([&](auto &record) { record->addNumbered(entry); });
        }
    }

    /// Returns the text that the record file would have.
    QByteArray text() {
        return record_.with([](const auto &record) {
            std::string text = record->headerLine();
            for (std::size_t row = 0; row < record->rows().size(); ++row)
                text += NumericTableCSV::rowLine(record->rows(), row);
            return QByteArray::fromStdString(text);
        });
    }

    [[nodiscard]] JournalWriter &journal() { return *journal_; }

    /// Destroys the journal's writer, which keeps the journal for recovery.
    void abandon() { journal_.reset(); }

private:
    Guarded<std::unique_ptr<EyeTrackingCSV>> record_{std::make_unique<EyeTrackingCSV>(QString(), false)};
    std::unique_ptr<JournalWriter> journal_;
};

/// Returns the header and the first `count` rows of a record file.
inline QByteArray recordText(int count) {
    QByteArray text = QByteArray::fromStdString(JournaledRecording::header());
    for (int row = 0; row < count; ++row)
        text += QByteArray::number(row) + ",0,1" + QByteArray(",0").repeated(20) + "\r\n";
    return text;
}

/// Returns the header and the first `count` rows of a samples file. The samples are 10 ms apart.
inline QByteArray samplesText(int count) {
    QByteArray text = "Number,Arrival_ms,L_Valid,R_Valid\r\n";
    for (int row = 0; row < count; ++row)
        text += QByteArray::number(row + 7) + ",17000000001" + QByteArray::number(row) + "0.250,1,0\r\n";
    return text;
}

/// Returns the paths of the journals in `folder`, without a slash at the end.
inline QStringList journalsIn(const QString &folder) {
    QStringList paths;
    for (const QFileInfo &entry : QDir(folder).entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name))
        paths << entry.filePath();
    return paths;
}

/// A test with new folders for each test function: "journal/a", "records" and "target".
class JournalTest : public QObject {
    Q_OBJECT

protected Q_SLOTS:
    void init() {
        folder_ = std::make_unique<QTemporaryDir>();
        for (const char *name : {"journal/a", "records", "target"})
            QDir(folder_->path()).mkpath(name);
    }

protected:
    [[nodiscard]] QString path(const QString &name) const { return folder_->filePath(name); }
    [[nodiscard]] QString target(const QString &name) const { return path("target/" + name); }
    [[nodiscard]] QStringList files(const QString &name) const {
        return QDir(path(name)).entryList(QDir::Files | QDir::Hidden, QDir::Name);
    }

private:
    std::unique_ptr<QTemporaryDir> folder_;
};
