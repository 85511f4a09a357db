#include "support/fake_tracker.h"
#include "support/test_main.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

namespace {

/// The lines of a record file without the header.
QList<QByteArray> rowsOf(const QString &path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll().trimmed().split('\n').mid(1) : QList<QByteArray>();
}

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
