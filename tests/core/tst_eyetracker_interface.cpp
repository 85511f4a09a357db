#include "core/recording_phases.h"
#include "support/fake_tracker.h"
#include "support/file_content.h"
#include "support/test_main.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <functional>

namespace {

/// The lines of a record file without the header.
QList<QByteArray> rowsOf(const QString &path) {
    return readFile(path).trimmed().split('\n').mid(1);
}

/// Returns the timestamps in a record file, separated by spaces.
QByteArray timestampsOf(const QString &path) {
    QByteArrayList timestamps;
    for (const QByteArray &row : rowsOf(path))
        timestamps << row.split(',').first();
    return timestamps.join(' ');
}

/// Appends the phases to a list, and calls `duringSaving` in the phase "saving".
class ListedPhases : public RecordingPhases {
public:
    ListedPhases(QStringList &list, std::function<void(const QString &path)> duringSaving)
        : list_(list), duringSaving_(std::move(duringSaving)) {}

    void saving(const QString &path, std::size_t rowCount) override {
        list_ << QString("%1 %2 %3")
                     .arg(QFileInfo::exists(path) ? "exists" : "saving", QFileInfo(path).fileName())
                     .arg(rowCount);
        duringSaving_(path);
    }
    void saved() override { list_ << "saved"; }
    void discarded() override { list_ << "discarded"; }

private:
    QStringList &list_;
    const std::function<void(const QString &path)> duringSaving_;
};

}  // namespace

class TestEyetrackerInterface : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void samples_are_read_with_and_without_numbers();
    void sample_is_emitted_before_it_is_stored();
    void connection_signals_report_only_changes();
    void percent_becomes_pixels_of_the_calibrated_area();
    void stopping_a_recording_writes_its_samples();
    void starting_again_stops_the_running_recording_and_keeps_its_file();
    void new_recording_takes_samples_while_the_old_file_is_written();
    void recording_is_saved_at_the_next_possible_place_data();
    void recording_is_saved_at_the_next_possible_place();
    void recording_without_a_place_stays_in_memory();
    void empty_path_selects_the_documents_folder();
};

void TestEyetrackerInterface::samples_are_read_with_and_without_numbers() {
    FakeTracker tracker;
    QCOMPARE(tracker.getLastSample().timestamp, qint64(0));
    QCOMPARE(tracker.lastNumberedSample().number, quint64(0));
    const auto start = std::chrono::steady_clock::now();
    for (const qint64 timestamp : {0, 1000, 2000, 2001}) {
        tracker.addSample({timestamp});
        QCOMPARE(tracker.getSamples().last().timestamp, timestamp);
    }

    QCOMPARE(tracker.getSamples().size(), 3);
    QCOMPARE(tracker.getLastSample().timestamp, qint64(2001));
    const NumberedSample newest = tracker.lastNumberedSample();
    QCOMPARE(newest.sample.timestamp, qint64(2001));
    QVERIFY(newest.arrival >= start && newest.arrival <= std::chrono::steady_clock::now());
    const SamplesSince since = tracker.samplesSince(newest.number - 2);
    QCOMPARE(since.samples.size(), std::size_t(2));
    QCOMPARE(since.samples.back().number, newest.number);
    QCOMPARE(since.windowCount, 3);
}

void TestEyetrackerInterface::sample_is_emitted_before_it_is_stored() {
    FakeTracker tracker;
    int storedDuringSignal = -1;
    connect(&tracker, &EyetrackerInterface::newSample, this, [&] { storedDuringSignal = tracker.getSamples().size(); });
    tracker.addSample({1});
    QCOMPARE(storedDuringSignal, 0);
}

void TestEyetrackerInterface::connection_signals_report_only_changes() {
    FakeTracker tracker;
    QStringList events;
    connect(&tracker, &EyetrackerInterface::connected, this, [&] { events << "connected"; });
    connect(&tracker, &EyetrackerInterface::disconnected, this, [&] { events << "disconnected"; });
    connect(&tracker, &EyetrackerInterface::connectedChanged, this,
            [&](bool on) { events << (on ? "true" : "false"); });
    for (const bool value : {false, true, true, false})
        tracker.setConnected(value);
    QCOMPARE(events, QStringList({"connected", "true", "disconnected", "false"}));
}

void TestEyetrackerInterface::percent_becomes_pixels_of_the_calibrated_area() {
    FakeTracker tracker;
    tracker.setCalibratedArea(1920, 0, 800, 600);  // the origin is not added
    QCOMPARE(tracker.percentToPixels(50, 125, false), QPoint(400, 750));
    QCOMPARE(tracker.percentToPixels(125, -25, true), QPoint(800, 0));
}

void TestEyetrackerInterface::stopping_a_recording_writes_its_samples() {
    const QTemporaryDir folder;
    const QString path = folder.filePath("r.csv");
    FakeTracker tracker;
    QSignalSpy stopped(&tracker, &EyetrackerInterface::recordStopped);
    QVERIFY(!tracker.isRecording());
    tracker.addSample({1});
    QVERIFY(tracker.startRecord(path));
    QVERIFY(tracker.isRecording());
    tracker.addSample({2});
    QVERIFY(!QFileInfo::exists(path));
    QVERIFY(tracker.stopRecord());
    tracker.addSample({3});

    QVERIFY(!tracker.isRecording());
    QCOMPARE(stopped, QList<QList<QVariant>>({{path}}));
    QCOMPARE(rowsOf(path).size(), 1);
    QVERIFY(rowsOf(path).first().startsWith("2,0,"));
    QVERIFY(!tracker.stopRecord());
    QCOMPARE(stopped.size(), 1);
}

void TestEyetrackerInterface::starting_again_stops_the_running_recording_and_keeps_its_file() {
    const QTemporaryDir folder;
    FakeTracker tracker;
    QStringList events;
    connect(&tracker, &EyetrackerInterface::recordStarted, this, [&] { events << "started"; });
    connect(&tracker, &EyetrackerInterface::recordStopped, this, [&] { events << "stopped"; });
    for (const qint64 timestamp : {1, 2}) {
        tracker.startRecord(folder.filePath("r.csv"));
        tracker.addSample({timestamp});
    }
    tracker.stopRecord();
    QCOMPARE(events, QStringList({"started", "stopped", "started", "stopped"}));
    QVERIFY(rowsOf(folder.filePath("r.csv")).value(0).startsWith("2,"));
    QVERIFY(rowsOf(folder.filePath("r_1.csv")).value(0).startsWith("1,"));
}

void TestEyetrackerInterface::new_recording_takes_samples_while_the_old_file_is_written() {
    const QTemporaryDir folder;
    FakeTracker tracker;
    QStringList phases;
    qint64 timestamp = 0;
    const auto deliver = [&](const QString &) { tracker.addSample({++timestamp}); };
    tracker.setCreatePhases([&](const EyeTrackingCSV &) { return std::make_unique<ListedPhases>(phases, deliver); });
    for (const char *name : {"r.csv", "r.csv", "discarded.csv"}) {
        tracker.startRecord(folder.filePath(name));
        deliver(QString());
    }
    tracker.discardRecord();
    QVERIFY(!tracker.isRecording());
    QCOMPARE(timestampsOf(folder.filePath("r_1.csv")), QByteArray("1"));
    QCOMPARE(timestampsOf(folder.filePath("r.csv")), QByteArray("2 3"));
    QCOMPARE(QDir(folder.path()).entryList(QDir::Files).size(), 2);
    // The earlier file is renamed before the phase "saving".
    QCOMPARE(phases, QStringList({"saving r.csv 1", "saved", "saving r.csv 2", "saved", "discarded"}));
}

void TestEyetrackerInterface::recording_is_saved_at_the_next_possible_place_data() {
    dataColumns<QString, QString>("name", "saved");
    dataRow("the name is a folder", "taken.csv", "^/taken_1\\.csv$");
    dataRow("another program takes the name", "raced.csv", "^/raced_1\\.csv$");
    dataRow("the folder is missing", "missing/r.csv", "^/records/r_1\\.csv$");
    dataRow("the name is too long", QString(300, 'x') + ".csv", "^/\\d{4}-[-_0-9]*_ocela\\.csv$");
#ifdef Q_OS_WIN
    dataRow("a spreadsheet holds the earlier file open", "held.csv", "^/held_1\\.csv$");
#endif
}

void TestEyetrackerInterface::recording_is_saved_at_the_next_possible_place() {
    QFETCH(QString, name);
    QFETCH(QString, saved);
    const QTemporaryDir folder;
    for (const char *subfolder : {"taken.csv", "records"})
        QVERIFY(QDir(folder.path()).mkdir(subfolder));
    const QString other = folder.filePath("records/r.csv");
    QVERIFY(writeFile(other, "other"));
    QFile held(folder.filePath("held.csv"));
    QVERIFY(held.open(QIODevice::WriteOnly));
    const auto otherProgram = [](const QString &path) {
        if (path.endsWith("/raced.csv"))
            writeFile(path, "other");
    };
    FakeTracker tracker;
    QStringList phases;
    tracker.setCreatePhases(
        [&](const EyeTrackingCSV &) { return std::make_unique<ListedPhases>(phases, otherProgram); });
    tracker.setRecordsFolder(folder.filePath("records"));
    QSignalSpy stopped(&tracker, &EyetrackerInterface::recordStopped);

    tracker.startRecord(folder.filePath(name));
    tracker.addSample({7});
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^Cannot save .*: .+"));
    QVERIFY(tracker.stopRecord());
    const QString path = stopped.value(0).value(0).toString();
    QVERIFY2(
        path.startsWith(folder.path()) && QRegularExpression(saved).match(path.mid(folder.path().size())).hasMatch(),
        qPrintable(path));
    QCOMPARE(timestampsOf(path), QByteArray("7"));
    QCOMPARE(readFile(other), QByteArray("other"));
    QVERIFY(!phases.join(' ').contains("exists"));
    const QDir::Filters files = QDir::Files | QDir::Hidden;
    QVERIFY2(QDir(folder.path()).entryList({"unfinished*"}, files).isEmpty(), "a temporary file is left");
}

void TestEyetrackerInterface::recording_without_a_place_stays_in_memory() {
    const QTemporaryDir folder;
    FakeTracker tracker;
    QSignalSpy stopped(&tracker, &EyetrackerInterface::recordStopped);
    for (int i = 0; i < 4; ++i)
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^Cannot save .*missing.*: .+"));
    for (const qint64 timestamp : {1, 2}) {
        tracker.startRecord(folder.filePath(QString("missing/%1.csv").arg(timestamp)));
        tracker.addSample({timestamp});
        QVERIFY(tracker.stopRecord());
        QCOMPARE(stopped.takeFirst(), QList<QVariant>{QString()});
    }
    QSignalSpy saved(&tracker, &EyetrackerInterface::unsavedRecordSaved);
    QVERIFY(!tracker.saveUnsaved());
    QVERIFY(saved.isEmpty());
    QVERIFY(tracker.unsavedProblem().contains("missing"));
    QVERIFY(tracker.saveUnsaved(folder.path()));
    QCOMPARE(saved, (QList<QList<QVariant>>{{folder.filePath("1.csv")}, {folder.filePath("2.csv")}}));
    QVERIFY(tracker.unsavedProblem().isEmpty());
    QCOMPARE(timestampsOf(folder.filePath("1.csv")), QByteArray("1"));
    QCOMPARE(timestampsOf(folder.filePath("2.csv")), QByteArray("2"));
}

void TestEyetrackerInterface::empty_path_selects_the_documents_folder() {
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation) + "/Ocela";
    FakeTracker tracker;
    QSignalSpy stopped(&tracker, &EyetrackerInterface::recordStopped);

    // On Windows this is the folder of the logged-in user, which may exist.
    if (!QFileInfo::exists(folder)) {
        tracker.startRecord();
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^Cannot save .*Ocela.*: .+"));
        QVERIFY(tracker.stopRecord());
        QVERIFY2(!QFileInfo::exists(folder), "the tracker must not create the folder");
    }

    QVERIFY(QDir().mkpath(folder));
    tracker.startRecord();
    tracker.stopRecord();
    const QFileInfo file(QDir::fromNativeSeparators(stopped.last()[0].toString()));
    QVERIFY(QFile::remove(file.filePath()));
    QDir().rmdir(folder);  // fails if the folder has other files
    QCOMPARE(file.path(), folder);
    QVERIFY(file.fileName().endsWith("_ocela.csv"));
}

OCELA_TEST(TestEyetrackerInterface)
#include "tst_eyetracker_interface.moc"
