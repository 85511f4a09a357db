#include "support/fake_tracker.h"
#include "support/test_main.h"

#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>
#include <QMetaMethod>
#include <QRegularExpression>
#include <QScreen>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

namespace {

EyeTrackingSample sampleAt(qint64 timestamp) {
    EyeTrackingSample sample;
    sample.timestamp = timestamp;
    return sample;
}

QList<qint64> timestampsOf(const QList<EyeTrackingSample> &samples) {
    QList<qint64> timestamps;
    for (const EyeTrackingSample &sample : samples)
        timestamps << sample.timestamp;
    return timestamps;
}

}  // namespace

class TestEyetrackerInterface : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void remote_callers_find_the_methods_in_their_order();
    void window_holds_two_seconds_data();
    void window_holds_two_seconds();
    void age_by_arrival_where_stamps_say_nothing_data();
    void age_by_arrival_where_stamps_say_nothing();
    void sample_is_emitted_before_it_is_stored();
    void connection_reports_changes_alone();
    void percent_becomes_pixels_of_the_calibrated_area_data();
    void percent_becomes_pixels_of_the_calibrated_area();
    void calibrates_existing_screens_alone();
    void record_is_written_when_it_stops();
    void starting_again_closes_the_running_record();
    void empty_path_names_a_file_in_the_documents_folder();
};

void TestEyetrackerInterface::remote_callers_find_the_methods_in_their_order() {
    const QMetaObject &meta = EyetrackerInterface::staticMetaObject;
    QStringList methods;
    for (int i = meta.indexOfMethod("start()"); i < meta.methodCount(); ++i)
        methods << meta.method(i).methodSignature();
    QCOMPARE(methods,
             QStringList({"start()", "stop()", "calibrate(QRect)", "stopCalibration()", "calibrateScreen(int)",
                          "setCalibratedArea(int,int,int,int)", "setCalibratedArea(QRect)", "startRecord(QString)",
                          "startRecord()", "stopRecord()", "getSamples()", "getLastSample()", "isConnected()"}));
}

void TestEyetrackerInterface::window_holds_two_seconds_data() {
    QTest::addColumn<QList<qint64>>("added");
    QTest::addColumn<QList<qint64>>("kept");
    using List = QList<qint64>;
    QTest::newRow("exactly two seconds old stays") << List{0, 1000, 2000} << List{0, 1000, 2000};
    QTest::newRow("older goes") << List{0, 1000, 2000, 2001} << List{1000, 2000, 2001};
    QTest::newRow("clock that went back removes nothing") << List{5000, 6000, 10} << List{5000, 6000, 10};
    QTest::newRow("from one end of time to the other")
        << List{std::numeric_limits<qint64>::min(), std::numeric_limits<qint64>::max()}
        << List{std::numeric_limits<qint64>::min(), std::numeric_limits<qint64>::max()};
}

void TestEyetrackerInterface::window_holds_two_seconds() {
    QFETCH(QList<qint64>, added);
    FakeTracker tracker;
    for (const qint64 timestamp : added)
        tracker.addSample(sampleAt(timestamp));
    QTEST(timestampsOf(tracker.getSamples()), "kept");
    QCOMPARE(tracker.getLastSample().timestamp, added.last());
}

void TestEyetrackerInterface::age_by_arrival_where_stamps_say_nothing_data() {
    QTest::addColumn<QList<qint64>>("stamps");
    QTest::addColumn<QList<qint64>>("kept");
    using List = QList<qint64>;
    // One sample a second arrives.
    QTest::newRow("all stamped alike") << List{0, 0, 0, 0, 0} << List{0, 0, 0};
    QTest::newRow("clock set back") << List{9000, 10000, 10, 20, 30} << List{10, 20, 30};
    QTest::newRow("clock that runs slow") << List{0, 1, 2, 3, 4} << List{0, 1, 2, 3, 4};
}

void TestEyetrackerInterface::age_by_arrival_where_stamps_say_nothing() {
    QFETCH(QList<qint64>, stamps);
    SampleWindow window(2000);
    for (int i = 0; i < stamps.size(); ++i)
        (void)window.add(sampleAt(stamps[i]), qint64(1000) * i);
    QTEST(timestampsOf(window.samples()), "kept");
}

void TestEyetrackerInterface::sample_is_emitted_before_it_is_stored() {
    FakeTracker tracker;
    int storedDuringSignal = -1;
    connect(&tracker, &EyetrackerInterface::newSample, this, [&] { storedDuringSignal = tracker.getSamples().size(); });
    tracker.addSample(sampleAt(1));
    QCOMPARE(storedDuringSignal, 0);
}

void TestEyetrackerInterface::connection_reports_changes_alone() {
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

void TestEyetrackerInterface::percent_becomes_pixels_of_the_calibrated_area_data() {
    QTest::addColumn<float>("x");
    QTest::addColumn<bool>("clamp");
    QTest::addColumn<int>("pixel");
    QTest::newRow("origin is not added") << 50.0F << false << 400;
    QTest::newRow("beyond the edge") << 125.0F << false << 1000;
    QTest::newRow("clamped to the edge") << 125.0F << true << 800;
}

void TestEyetrackerInterface::percent_becomes_pixels_of_the_calibrated_area() {
    QFETCH(float, x);
    QFETCH(bool, clamp);
    FakeTracker tracker;
    tracker.setCalibratedArea(1920, 0, 800, 600);
    QTEST(tracker.percentToPixels(x, 0, clamp).x(), "pixel");
    QCOMPARE(tracker.percentToPixels(0, 25, clamp).y(), 150);
}

void TestEyetrackerInterface::calibrates_existing_screens_alone() {
    const QList<QScreen *> screens = QGuiApplication::screens();
    FakeTracker tracker;
    tracker.calibrateScreen(-1);
    tracker.calibrateScreen(screens.size());
    QVERIFY(tracker.calls.isEmpty());
    tracker.calibrateScreen(screens.size() - 1);
    QCOMPARE(tracker.lastArea, screens.last()->geometry());
}

void TestEyetrackerInterface::record_is_written_when_it_stops() {
    const QTemporaryDir folder;
    const QString path = folder.filePath("r.csv");
    FakeTracker tracker;
    QSignalSpy stopped(&tracker, &EyetrackerInterface::recordStopped);
    tracker.addSample(sampleAt(1));
    QVERIFY(tracker.startRecord(path));
    tracker.addSample(sampleAt(2));
    QVERIFY(!QFileInfo::exists(path));
    QVERIFY(tracker.stopRecord());
    tracker.addSample(sampleAt(3));

    QCOMPARE(stopped, QList<QList<QVariant>>({{path}}));
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QList<QByteArray> lines = file.readAll().trimmed().split('\n');
    QCOMPARE(lines.size(), 2);
    QVERIFY(lines[1].startsWith("2,0,"));
    QVERIFY(!tracker.stopRecord());
}

void TestEyetrackerInterface::starting_again_closes_the_running_record() {
    const QTemporaryDir folder;
    FakeTracker tracker;
    QStringList events;
    connect(&tracker, &EyetrackerInterface::recordStarted, this, [&] { events << "started"; });
    connect(&tracker, &EyetrackerInterface::recordStopped, this,
            [&](const QString &path) { events << QFileInfo(path).fileName(); });
    tracker.startRecord(folder.filePath("a.csv"));
    tracker.startRecord(folder.filePath("b.csv"));
    tracker.stopRecord();
    QCOMPARE(events, QStringList({"started", "a.csv", "started", "b.csv"}));
}

void TestEyetrackerInterface::empty_path_names_a_file_in_the_documents_folder() {
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation) + "/Ocela";
    FakeTracker tracker;
    QSignalSpy stopped(&tracker, &EyetrackerInterface::recordStopped);

    // On Windows it may be the person's own, with records in it.
    if (!QFileInfo::exists(folder)) {
        tracker.startRecord();
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^Cannot save .*Ocela.*: .+"));
        QVERIFY(tracker.stopRecord());
        QVERIFY2(!QFileInfo::exists(folder), "the tracker must not make the folder");
    }

    QVERIFY(QDir().mkpath(folder));
    tracker.startRecord();
    tracker.stopRecord();
    const QFileInfo file(QDir::fromNativeSeparators(stopped.last()[0].toString()));
    QVERIFY(QFile::remove(file.filePath()));
    QDir().rmdir(folder);  // if there is nothing else in it
    QCOMPARE(file.path(), folder);
    QVERIFY(file.fileName().endsWith("_ocela.csv"));
}

OCELA_TEST(TestEyetrackerInterface)
#include "tst_eyetracker_interface.moc"
