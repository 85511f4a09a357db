#include "core/eye_tracking_csv.h"
#include "core/journal_recovery.h"
#include "core/markers.h"
#include "core/record_markers.h"
#include "core/recording_journal.h"
#include "journaled_recording.h"
#include "support/fake_tracker.h"
#include "support/file_content.h"
#include "support/test_main.h"
#include "toolkit/table/csv_text.h"

#include <QRegularExpression>
#include <QSignalSpy>
#include <atomic>
#include <thread>

using namespace std::chrono_literals;

namespace {

constexpr char eventsHeader[] = "onset,duration,text,number,row\r\n";
constexpr char journalHeader[] = "Time_ms,Text,Number,Row\r\n";

/// Returns the rows of an events file without its header.
QList<QStringList> eventsIn(const QString &path) {
    QList<QStringList> rows;
    for (const csv::Record &record : csv::parse(QString::fromUtf8(readFile(path)), ','))
        rows << record.fields;
    return rows.mid(1);
}

}  // namespace

class TestMarkers : public JournalTest {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void marker_has_the_time_and_the_newest_sample_of_the_recording();
    void every_text_is_read_back_data();
    void every_text_is_read_back();
    void every_running_recording_stores_the_marker();
    void events_file_has_a_place_beside_the_record_file_data();
    void events_file_has_a_place_beside_the_record_file();
    void many_markers_are_saved_and_recovered();
    void markers_are_limited();
    void journal_is_recovered_data();
    void journal_is_recovered();
    void every_marker_and_sample_of_a_recording_is_saved_once();
    void documented_example_is_correct();

private:
    /// Returns whether the journal contains `count` lines of markers.
    [[nodiscard]] bool journalHas(int count) const {
        return readFile(journalsIn(path("running")).value(0) + "/markers.csv").count('\n') == count + 1;
    }

    std::unique_ptr<FakeTracker> tracker_;
    std::unique_ptr<Markers> markers_;
};

void TestMarkers::init() {
    JournalTest::init();
    tracker_ = std::make_unique<FakeTracker>();
    tracker_->setRecordsFolder(path("records"));
    recording_journal::enable(*tracker_, path("running"), [] { return false; });
    markers_ = std::make_unique<Markers>(nullptr);
    markers_->setTrackers({tracker_.get()});
    markers_->setSelectedTracker(tracker_.get());
}

void TestMarkers::marker_has_the_time_and_the_newest_sample_of_the_recording() {
    QSignalSpy added(markers_.get(), &Markers::added);
    QVERIFY(!markers_->add("no recording").recorded);
    const auto before = std::chrono::system_clock::now();
    tracker_->startRecord(target("r.csv"));
    QVERIFY(tracker_->runningRecording()->startedAt >= before);
    QCOMPARE(markers_->add("no sample").number, quint64(0));
    const auto start = std::chrono::steady_clock::now();
    tracker_->addSample({1});
    tracker_->addSample({2});
    const auto arrival = tracker_->samplesSince(0).samples.front().arrival;
    const quint64 number = tracker_->lastNumberedSample().number;
    const Marker now = markers_->add("now");
    QVERIFY(now.time >= start && now.time <= std::chrono::steady_clock::now() && now.recorded);
    QCOMPARE(now.number, number);
    markers_->add("earlier", arrival - 1500ms);
    tracker_->addSample({3});
    markers_->add("later", arrival + 1h + 250us);
    const auto limit = std::chrono::steady_clock::now() - Markers::maxTimeDifference;
    QVERIFY(markers_->add("much earlier", std::chrono::steady_clock::time_point::min()).time >= limit);
    QCOMPARE(tracker_->runningRecording()->markerCount, 5);
    tracker_->stopRecord();
    QVERIFY(!tracker_->runningRecording());
    QCOMPARE(added.size(), 6);

    const QList<QStringList> events = eventsIn(target("r_events.csv"));
    QCOMPARE(events.size(), 5);
    const QString second = QString::number(number);
    const QString third = QString::number(number + 1);
    QCOMPARE(events[0].mid(1), QStringList({"0", "much earlier", third, "2"}));
    QCOMPARE(events[1], QStringList({"-1.500000", "0", "earlier", second, "1"}));
    QCOMPARE(events[2].mid(1), QStringList({"0", "no sample", "", ""}));
    QVERIFY(QRegularExpression(R"(^-0\.\d{6}$)").match(events[2][0]).hasMatch());
    QCOMPARE(events[3].mid(1), QStringList({"0", "now", second, "1"}));
    // The arrival and the marker are both rounded down to microseconds.
    QVERIFY(qAbs(events[3][0].toDouble() - std::chrono::duration<double>(now.time - arrival).count()) < 1.5e-6);
    QCOMPARE(events[4], QStringList({"3600.000250", "0", "later", third, "2"}));

    // Before the first sample of a recording, the number is that of the tracker's newest sample.
    tracker_->startRecord(target("s.csv"));
    markers_->add("no row");
    tracker_->stopRecord();
    QCOMPARE(eventsIn(target("s_events.csv")), QList<QStringList>({{"", "0", "no row", third, ""}}));
}

void TestMarkers::every_text_is_read_back_data() {
    dataColumns<QString, QString>("text", "stored");
    for (const char *text : {"stimulus on", "say \"yes\", then \"no\"", "\"", "\"\"", ",", "two\nlines",
                             "two\r\nlines\r", "\n", "=1+1", " spaces ", "Начало пробы", "\xF0\x9F\x91\x81 gaze"})
        dataRow(text, QString(text), QString(text));
    dataRow("zero", QString("a") + QChar(0) + 'b', QString("a") + QChar(QChar::ReplacementCharacter) + 'b');
    const QString longest = QString::fromUtf8("\xF0\x9F\x91\x81").repeated(Markers::maxTextLength - 1) + 'x';
    dataRow("longest", longest, longest);
    dataRow("too long", longest + 'y', longest);
    const QString longPair = longest.chopped(1) + QString::fromUtf8("\xF0\x9F\x91\x81");
    dataRow("too long, after a surrogate pair", longPair + 'y', longPair);
}

void TestMarkers::every_text_is_read_back() {
    QFETCH(QString, text);
    QFETCH(QString, stored);
    tracker_->startRecord(target("r.csv"));
    QCOMPARE(markers_->add(text).text, stored);
    tracker_->stopRecord();
    QCOMPARE(eventsIn(target("r_events.csv")).value(0).value(2), stored);

    const QByteArray journal =
        journalHeader + QByteArray::fromStdString(record_markers::journalLine({1ms, stored, 8, 1}));
    const record_markers::Parsed parsed = record_markers::parseJournal(journal);
    QCOMPARE(parsed.markers.size(), std::size_t(1));
    QCOMPARE(parsed.markers.front().text, stored);

    // Wherever the journal is cut off, it has this marker as a whole or not at all.
    for (int size = 0; size < journal.size(); ++size) {
        const record_markers::Parsed torn = record_markers::parseJournal(journal.left(size) + QByteArray(7, '\0'));
        QVERIFY2(torn.markers.empty() && !torn.isDamaged, qPrintable(QString::number(size)));
    }
}

void TestMarkers::every_running_recording_stores_the_marker() {
    FakeTracker other;
    recording_journal::enable(other, path("running"), [] { return false; });
    markers_->setTrackers({tracker_.get(), &other});
    other.startRecord(target("other.csv"));
    tracker_->addSample({1});
    const quint64 number = tracker_->lastNumberedSample().number;
    const Marker first = markers_->add("first");
    QVERIFY(first.recorded);
    QCOMPARE(first.number, number);
    other.addSample({1});
    tracker_->startRecord(target("r.csv"));
    QCOMPARE(markers_->add("second").number, number);
    tracker_->discardRecord();
    other.stopRecord();
    QCOMPARE(files("target"), QStringList({"other.csv", "other_events.csv"}));
    const QList<QStringList> events = eventsIn(target("other_events.csv"));
    QCOMPARE(events.size(), 2);
    QCOMPARE(events[0].mid(2), QStringList({"first", "", ""}));
    QCOMPARE(events[1].mid(2), QStringList({"second", QString::number(number + 1), "0"}));
}

void TestMarkers::events_file_has_a_place_beside_the_record_file_data() {
    // The earlier entries are files, or folders with a slash at the end. The files are those of the folders "target"
    // and "records"; * is the date and time.
    dataColumns<QStringList, QString, QString, QString>("earlier", "name", "files", "events");
    const QString longName(245, 'x');
    dataRow("free", QStringList(), "r.csv", "r.csv r_events.csv", "r_events.csv");
    dataRow("earlier recording with markers", QStringList{"r.csv", "r_events.csv"}, "r.csv",
            "r.csv r_1.csv r_1_events.csv r_events.csv", "r_events.csv");
    dataRow("foreign file", QStringList{"r_events.csv"}, "r.csv", "r.csv r_events.csv r_events_1.csv", "r_events.csv");
    dataRow("folder has the name", QStringList{"r_events.csv/"}, "r.csv", "r.csv r_events_1.csv", "r_events_1.csv");
    dataRow("record file gets another name", QStringList{"r.csv/"}, "r.csv", "r_1.csv r_1_events.csv",
            "r_1_events.csv");
    dataRow("fallback folder", QStringList(), "missing/r.csv", "r.csv r_events.csv", "r_events.csv");
    dataRow("name is too long", QStringList(), longName + ".csv", "*_ocela_events.csv " + longName + ".csv",
            "*_ocela_events.csv");
}

void TestMarkers::events_file_has_a_place_beside_the_record_file() {
    QFETCH(QStringList, earlier);
    QFETCH(QString, name);
    QFETCH(QString, events);
    for (const QString &entry : earlier)
        QVERIFY(entry.endsWith('/') ? QDir().mkdir(target(entry)) : writeFile(target(entry), entry.toUtf8()));
    if (events != "r_events.csv" || name != "r.csv")
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^Cannot save .*"));
    tracker_->startRecord(target(name));
    markers_->add("a");
    tracker_->stopRecord();

    const QRegularExpression dateAndTime(R"(\d{4}-\d\d-\d\d_[0-9-]+(?=_ocela))");
    const QStringList found = files("target") + files("records");
    QTEST(QString(found.join(' ')).replace(dateAndTime, "*"), "files");
    const QString file = found.filter(QRegularExpression(QString(events).replace('*', ".+"))).value(0);
    const QString folder = name.contains('/') ? path("records/") : path("target/");
    QCOMPARE(readFile(folder + file), QByteArray(eventsHeader) + ",0,a,,\r\n");
    for (const QString &entry : earlier.filter(QRegularExpression("csv$"))) {
        const QString base = QString(entry).remove("_events").chopped(4);
        const QString kept = entry.contains("_events") && earlier.size() > 1 ? base + "_1_events.csv"
                             : entry.contains("_events")                     ? "r_events_1.csv"
                                                                             : base + "_1.csv";
        QCOMPARE(readFile(target(kept)), entry.toUtf8());
    }
}

void TestMarkers::many_markers_are_saved_and_recovered() {
    constexpr int count = 10'000;
    tracker_->startRecord(target("r.csv"));
    for (int i = 0; i < count; ++i) {
        if (i % 10 == 0)
            tracker_->addSample({i});
        QVERIFY(markers_->add("marker \"" + QString::number(i) + "\"\n").recorded);
    }
    QTRY_VERIFY_WITH_TIMEOUT(journalHas(2 * count), 30'000);
    for (const char *name : {"/recording.json", "/rows.csv", "/samples.csv", "/markers.csv"})
        QVERIFY(QFile::copy(journalsIn(path("running")).first() + name, path("journal/a") + name));
    tracker_->stopRecord();
    const QList<QStringList> events = eventsIn(target("r_events.csv"));
    QCOMPARE(events.size(), count);
    for (int i = 0; i < count; ++i)
        QCOMPARE(events[i].mid(2, 1) + events[i].mid(4),
                 QStringList({"marker \"" + QString::number(i) + "\"\n", QString::number(i / 10)}));
    JournalRecovery(path("journal"), path("records")).waitForDone();
    QCOMPARE(readFile(target("r_recovered_events.csv")), readFile(target("r_events.csv")));
}

void TestMarkers::markers_are_limited() {
    EyeTrackingCSV recording(QString(), false);
    for (std::size_t i = 0; i < EyeTrackingCSV::maxMarkerCount; ++i)
        QVERIFY(recording.addMarker("x", {}, 0));
    QVERIFY(!recording.addMarker("x", {}, 0));
}

void TestMarkers::journal_is_recovered_data() {
    // The texts have no header; null: no file. "existing" is the events file that the recording has written.
    dataColumns<QString, int, QByteArray, QByteArray, QByteArray, QString>("phase", "rowCount", "markers", "existing",
                                                                           "events", "warning");

    const QByteArray none;
    const QByteArray first = "1700000000100.250,a,,\r\n";
    const QByteArray two = first + "1699999999100.125,\"b,\n\"\"c\"\"\",8,1\r\n";
    const QByteArray events = "-1.000125,0,\"b,\n\"\"c\"\"\",8,1\r\n0.000000,0,a,,\r\n";
    dataRow("markers", "recording", 2, two, none, events, "");
    dataRow("no markers", "recording", 2, QByteArray(""), none, none, "");
    dataRow("no file", "recording", 2, none, none, none, "");
    dataRow("torn", "recording", 2, two + "1700000000100.250,\"d\n", none, events, "");
    dataRow("zeros", "recording", 2, two + QByteArray(999, '\0'), none, events, "");
    dataRow("row was lost", "recording", 1, two, none, QByteArray(events).replace(",1\r\n", ",\r\n"), "");
    dataRow("only markers", "recording", 0, first, none, QByteArray(",0,a,,\r\n"), "");
    dataRow("damaged", "recording", 2, first + "x,y\r\n" + two, none, QByteArray("0.000000,0,a,,\r\n"),
            "^Only the first 1 markers can be read in .*");
    dataRow("saved, then killed", "saving", 2, two, none, events, "");
    dataRow("saved with events, then killed", "saving", 2, two, events, events, "");
    dataRow("saved with events that the journal lacks", "saving", 2, two, events + "9.000000,0,z,,\r\n",
            events + "9.000000,0,z,,\r\n", "");
}

void TestMarkers::journal_is_recovered() {
    QFETCH(QString, phase);
    QFETCH(int, rowCount);
    QFETCH(QByteArray, markers);
    QFETCH(QByteArray, existing);
    QFETCH(QByteArray, events);
    QFETCH(QString, warning);
    const QByteArray rows = recordText(rowCount);
    JournalInfo info = JournaledRecording::info(target("r.csv"));
    if (phase == "saving") {
        info.phase = JournalPhase::Saving;
        info.savingPath = target("saved.csv");
        info.savingRowCount = static_cast<quint64>(rowCount);
        QVERIFY(writeFile(info.savingPath, rows));
    }
    if (!existing.isNull())
        QVERIFY(writeFile(target("saved_events.csv"), eventsHeader + existing));
    QVERIFY(writeFile(path("journal/a/recording.json"), info.toJson()));
    QVERIFY(writeFile(path("journal/a/rows.csv"), rows));
    QVERIFY(writeFile(path("journal/a/samples.csv"), samplesText(rowCount)));
    if (!markers.isNull())
        QVERIFY(writeFile(path("journal/a/markers.csv"), markers.isEmpty() ? markers : journalHeader + markers));
    if (!warning.isEmpty())
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(warning));

    JournalRecovery(path("journal"), path("records")).waitForDone();
    QCOMPARE(journalsIn(path("journal")), QStringList());
    const QString base = phase == "saving" ? "saved" : "r_recovered";
    QStringList expected{base + ".csv"};
    if (!events.isNull())
        expected << base + "_events.csv";
    QCOMPARE(files("target"), expected);
    QCOMPARE(readFile(target(base + ".csv")), rows);
    if (!events.isNull())
        QCOMPARE(readFile(target(base + "_events.csv")), eventsHeader + events);
}

void TestMarkers::every_marker_and_sample_of_a_recording_is_saved_once() {
    constexpr int threadCount = 3;
    std::atomic<bool> running{true};
    std::atomic<int> addedCount{0};
    QStringList reported[threadCount];
    std::vector<std::thread> programs;
    programs.reserve(threadCount);
    for (int i = 0; i < threadCount; ++i) {
        programs.emplace_back([&, i] {
            for (int k = 0; running; ++k) {
                const Marker marker = markers_->add(QString("%1 %2").arg(i).arg(k));
                if (marker.recorded)
                    reported[i] << marker.text;
                ++addedCount;
                std::this_thread::yield();
            }
        });
    }
    std::thread device([&] {
        for (qint64 i = 1; running; ++i) {
            tracker_->addSample({i});
            std::this_thread::yield();
        }
    });
    // Some recordings follow one another without a pause.
    for (int i = 0; i < 10; ++i) {
        tracker_->startRecord(target(QString("%1.csv").arg(i)));
        const int before = addedCount;
        QTRY_VERIFY(addedCount > before + 50 && tracker_->recordLength().sampleCount > 50);
        if (i % 2 == 0)
            tracker_->stopRecord();
    }
    tracker_->stopRecord();
    running = false;
    for (std::thread &program : programs)
        program.join();
    device.join();

    QStringList saved;
    for (int i = 0; i < 10; ++i) {
        const QList<QStringList> events = eventsIn(target(QString("%1_events.csv").arg(i)));
        const EyeTrackingCSV record(target(QString("%1.csv").arg(i)), true);
        const int rowCount = static_cast<int>(record.rows().size());
        QVERIFY(rowCount > 50);
        qint64 timestamp = record.rows().at(0).at(0).toLongLong();
        for (int row = 0; row < rowCount; ++row)
            QCOMPARE(record.rows().at(static_cast<std::size_t>(row)).at(0).toLongLong(), timestamp++);
        for (const QStringList &event : events) {
            saved << event.value(2);
            QVERIFY(event.value(4).isEmpty() || event.value(4).toInt() < rowCount);
        }
    }
    QStringList expected = reported[0] + reported[1] + reported[2];
    QVERIFY(expected.size() > 100);
    saved.sort();
    expected.sort();
    QCOMPARE(saved, expected);
}

void TestMarkers::documented_example_is_correct() {
    const std::vector<RecordMarker> markers{{2'500'250us, "Stimulus \"A\", left", 225, 224},
                                            {500'000us, "instructions", 0, std::nullopt},
                                            {3'750'000us, "F9", 412, 411}};
    const QByteArray text = QByteArray::fromStdString(record_markers::eventsText(markers, 1s, 1000));
    const QString docs = QString::fromUtf8(readFile(OCELA_SOURCE_DIR "/docs/records.md"));
    QVERIFY2(docs.contains("```\n" + QString::fromUtf8(text).remove('\r') + "```"), text.constData());
}

OCELA_TEST(TestMarkers)
#include "tst_markers.moc"
