#include "journaled_recording.h"
#include "support/file_content.h"
#include "support/test_main.h"

#include <QDateTime>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>

class TestJournalWriter : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { folder_ = std::make_unique<QTemporaryDir>(); }

    void journal_has_the_rows_of_the_record_file_and_their_origins();
    void phases_are_on_the_disk_before_the_journal_is_removed();
    void journal_that_cannot_be_created_is_created_later();
    void step_of_the_system_clock_is_stored();

private:
    [[nodiscard]] QString journals() const { return folder_->filePath("journal"); }
    [[nodiscard]] JournalInfo storedInfo() const {
        return parseJournalInfo(readFile(journalsIn(journals()).value(0) + "/recording.json")).info;
    }

    std::unique_ptr<QTemporaryDir> folder_;
};

void TestJournalWriter::journal_has_the_rows_of_the_record_file_and_their_origins() {
    JournaledRecording recording(journals(), folder_->filePath("r.csv"));
    recording.add(1, 150);
    QTRY_COMPARE(journalsIn(journals()).size(), 1);
    const QString path = journalsIn(journals()).first();
    QVERIFY(path.endsWith("_aSee-Pro"));
    QTRY_COMPARE(readFile(path + "/rows.csv"), recording.text());
    recording.add(151, 200);
    QTRY_COMPARE(readFile(path + "/rows.csv"), recording.text());

    const QList<QByteArray> samples = readFile(path + "/samples.csv").split('\n');
    QCOMPARE(samples.size(), 202);
    QCOMPARE(samples.first(), QByteArray("Number,Arrival_ms,L_Valid,R_Valid\r"));
    const QList<QByteArray> cells = samples.value(199).trimmed().split(',');
    QCOMPARE(cells.value(0) + ',' + cells.value(2) + ',' + cells.value(3), QByteArray("199,1,0"));
    QVERIFY(QRegularExpression(R"(^\d{13}\.\d{3}$)").match(cells.value(1)).hasMatch());
    QVERIFY(qAbs(cells.value(1).toDouble() - static_cast<double>(QDateTime::currentMSecsSinceEpoch())) < 60'000);

    const JournalInfo expected = JournaledRecording::info(folder_->filePath("r.csv"));
    QCOMPARE(storedInfo().toJson(), expected.toJson());
    QVERIFY(storedInfo().calibratedArea == expected.calibratedArea);
}

void TestJournalWriter::phases_are_on_the_disk_before_the_journal_is_removed() {
    JournaledRecording recording(journals(), folder_->filePath("r.csv"));
    recording.add(1, 70);
    recording.journal().saving(folder_->filePath("r.csv"), 70);
    QVERIFY(storedInfo().phase == JournalPhase::Saving);
    QCOMPARE(readFile(journalsIn(journals()).first() + "/rows.csv"), recording.text());
    recording.journal().saving(folder_->filePath("r_1.csv"), 70);
    QCOMPARE(storedInfo().savingPath, folder_->filePath("r_1.csv"));
    QCOMPARE(storedInfo().savingRowCount, quint64(70));
    recording.journal().saved();
    QCOMPARE(journalsIn(journals()), QStringList());

    JournaledRecording discarded(journals(), folder_->filePath("d.csv"));
    discarded.add(1, 3);
    QTRY_COMPARE(journalsIn(journals()).size(), 1);
    discarded.journal().discarded();
    QCOMPARE(journalsIn(journals()), QStringList());
}

void TestJournalWriter::journal_that_cannot_be_created_is_created_later() {
    QVERIFY(writeFile(journals(), "a file in the way"));
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^The journal of the recording pauses.*journal: .+"));
    JournaledRecording recording(journals(), folder_->filePath("r.csv"));
    recording.add(1, 100);
    // Longer than the first retry: there is no second warning.
    QTest::qWait(static_cast<int>((JournalWriter::retryInterval + 2 * JournalWriter::takeInterval).count()));
    QVERIFY(QFile::remove(journals()));
    recording.add(101, 120);
    QTRY_COMPARE(journalsIn(journals()).size(), 1);
    QTRY_COMPARE(readFile(journalsIn(journals()).first() + "/rows.csv"), recording.text());
}

void TestJournalWriter::step_of_the_system_clock_is_stored() {
    std::atomic<bool> isLate{false};
    const auto systemNow = [&isLate] {
        return std::chrono::system_clock::now() - (isLate ? std::chrono::minutes(1) : std::chrono::minutes(0));
    };
    JournaledRecording recording(journals(), folder_->filePath("r.csv"), systemNow);
    recording.add(1, 3);
    QTRY_COMPARE(storedInfo().tracker, "aSee Pro");
    QVERIFY(!storedInfo().systemClockStepped);
    isLate = true;
    QTRY_VERIFY(storedInfo().systemClockStepped);
    isLate = false;
    recording.journal().saving(folder_->filePath("r.csv"), 3);
    QVERIFY(storedInfo().systemClockStepped);
}

OCELA_TEST(TestJournalWriter)
#include "tst_journal_writer.moc"
