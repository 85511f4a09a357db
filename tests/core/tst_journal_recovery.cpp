#include "core/journal_recovery.h"
#include "core/recording_journal.h"
#include "journaled_recording.h"
#include "support/fake_tracker.h"
#include "support/file_content.h"
#include "support/test_main.h"

#include <QFileInfo>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

namespace {

/// Returns the header and the first `count` rows of a record file.
QByteArray recordText(int count) {
    QByteArray text = QByteArray::fromStdString(JournaledRecording::header());
    for (int row = 0; row < count; ++row)
        text += QByteArray::number(row) + QByteArray(",0").repeated(22) + "\r\n";
    return text;
}

}  // namespace

class TestJournalRecovery : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void journal_is_recovered_kept_or_removed_data();
    void journal_is_recovered_kept_or_removed();
    void recovered_file_gets_a_free_name_in_a_folder_that_can_be_written_data();
    void recovered_file_gets_a_free_name_in_a_folder_that_can_be_written();
    void running_recording_is_left_alone_until_its_program_ends();
    void tracker_has_a_journal_until_its_recording_is_saved_or_discarded();

private:
    /// Returns the paths of the recovered files.
    QStringList recover() const;
    [[nodiscard]] QString path(const QString &name) const { return folder_->filePath(name); }
    [[nodiscard]] JournalInfo info(const QString &phase) const;
    void writeJournal(const QByteArray &json, const QByteArray &rows) const;

    std::unique_ptr<QTemporaryDir> folder_;
};

void TestJournalRecovery::init() {
    folder_ = std::make_unique<QTemporaryDir>();
    for (const char *name : {"journal/a", "records", "target"})
        QVERIFY(QDir(folder_->path()).mkpath(name));
}

QStringList TestJournalRecovery::recover() const {
    QStringList paths;
    JournalRecovery(path("journal"), path("records"), [&](const QString &recovered) {
        paths << recovered;
    }).waitForDone();
    return paths;
}

JournalInfo TestJournalRecovery::info(const QString &phase) const {
    JournalInfo info = JournaledRecording::info(path("target/r.csv"));
    info.phase = static_cast<JournalPhase>(QStringList({"recording", "saving", "saved", "discarded"}).indexOf(phase));
    info.savingPath = path("target/saved.csv");
    info.savingRowCount = 3;
    return info;
}

void TestJournalRecovery::writeJournal(const QByteArray &json, const QByteArray &rows) const {
    const auto write = [this](const char *name, const QByteArray &content) {
        return content.isNull() || writeFile(path("journal/a/") + name, content);
    };
    QVERIFY(write("recording.json", json) && write("rows.csv", rows) && write("samples.csv", "Number\r\n"));
}

void TestJournalRecovery::journal_is_recovered_kept_or_removed_data() {
    QTest::addColumn<QString>("phase");     // or the text of recording.json
    QTest::addColumn<QByteArray>("rows");   // null: the file does not exist
    QTest::addColumn<QByteArray>("saved");  // the file that was being saved; null: it does not exist
    QTest::addColumn<QByteArray>("recovered");
    QTest::addColumn<QStringList>("journals");
    QTest::addColumn<QString>("warning");

    const QByteArray none;
    const QByteArray three = recordText(3);
    const QByteArray zeros(5000, '\0');
    const QStringList removed;
    const QStringList kept{"a"};
    const QStringList damaged{"a.damaged"};
    const QString damage = "^Cannot recover .*a.damaged: its .*";

    QTest::newRow("complete rows") << "recording" << three << none << three << removed << "";
    QTest::newRow("torn last row") << "recording" << recordText(4).chopped(1) << none << three << removed << "";
    QTest::newRow("zeros after a power failure") << "recording" << three + zeros << none << three << removed << "";
    QTest::newRow("torn row and zeros") << "recording" << three + "3,0" + zeros << none << three << removed << "";
    QTest::newRow("no rows") << "recording" << recordText(0) << none << none << removed << "";
    QTest::newRow("torn header") << "recording" << three.left(9) << none << none << removed << "";
    QTest::newRow("removal was interrupted") << "recording" << none << none << none << removed << "";
    QTest::newRow("rest of a removal") << QString() << none << none << none << removed << "";

    QTest::newRow("row with text") << "recording" << three + "x" + three << none << none << damaged << damage;
    QTest::newRow("row is too short") << "recording" << three + "1,2\r\n" << none << none << damaged << damage;
    QTest::newRow("rows after zeros") << "recording" << three + zeros + three << none << none << damaged << damage;
    QTest::newRow("another header") << "recording" << QByteArray("A\r\n1\r\n") << none << none << damaged << damage;
    QTest::newRow("torn description") << "{\"format\": 1, \"pha" << three << none << none << damaged << damage;
    QTest::newRow("no description") << QString() << three << none << none << damaged << damage;
    QTest::newRow("no target") << "{\"format\": 1, \"phase\": \"recording\"}" << three << none << none << damaged
                               << damage;
    QTest::newRow("another format") << "{\"format\": 2}" << three << none << none << kept << "^Another version of .*a.";

    QTest::newRow("saved") << "saved" << three << none << none << removed << "";
    QTest::newRow("discarded") << "discarded" << three << none << none << removed << "";
    QTest::newRow("saving, file not named yet") << "saving" << three << none << three << removed << "";
    QTest::newRow("saving, file is complete") << "saving" << three << three << none << removed << "";
    QTest::newRow("saving, file has rows that the journal lacks")
        << "saving" << recordText(2) << three << none << removed << "";
    QTest::newRow("saving, another file has the name")
        << "saving" << three << QByteArray(three).replace("\n0,0,0", "\n9,0,0") << three << removed << "";
    QTest::newRow("saving, the file is too short") << "saving" << three << recordText(2) << three << removed << "";
}

void TestJournalRecovery::journal_is_recovered_kept_or_removed() {
    QFETCH(QString, phase);
    QFETCH(QByteArray, rows);
    QFETCH(QByteArray, saved);
    QFETCH(QByteArray, recovered);
    QFETCH(QStringList, journals);
    QFETCH(QString, warning);
    writeJournal(phase.isEmpty() || phase.startsWith('{') ? phase.toUtf8() : info(phase).toJson(), rows);
    if (!saved.isNull())
        QVERIFY(writeFile(path("target/saved.csv"), saved));
    if (!warning.isEmpty())
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(warning));

    QCOMPARE(recover(), recovered.isNull() ? QStringList() : QStringList(path("target/r_recovered.csv")));
    QCOMPARE(readFile(path("target/r_recovered.csv")), recovered);
    QCOMPARE(readFile(path("target/saved.csv")), saved);
    QCOMPARE(QDir(path("journal")).entryList(QDir::Dirs | QDir::NoDotAndDotDot), journals);
    if (!journals.isEmpty())
        QCOMPARE(readFile(path("journal/") + journals.first() + "/rows.csv"), rows);
    const int fileCount = !recovered.isNull() + !saved.isNull();
    QCOMPARE(QDir(path("target")).entryList(QDir::Files | QDir::Hidden).size(), fileCount);
}

void TestJournalRecovery::recovered_file_gets_a_free_name_in_a_folder_that_can_be_written_data() {
    QTest::addColumn<QStringList>("existing");
    QTest::addColumn<QStringList>("missing");
    QTest::addColumn<QString>("recovered");

    QTest::newRow("name is taken") << QStringList{"target/r_recovered.csv", "target/r_recovered_1.csv"} << QStringList()
                                   << "target/r_recovered_2.csv";
    QTest::newRow("left by an interrupted recovery")
        << QStringList{"target/.a.recovering"} << QStringList() << "target/r_recovered.csv";
    QTest::newRow("folder is missing") << QStringList() << QStringList{"target"} << "records/r_recovered.csv";
    QTest::newRow("no folder") << QStringList() << QStringList{"target", "records"} << QString();
}

void TestJournalRecovery::recovered_file_gets_a_free_name_in_a_folder_that_can_be_written() {
    QFETCH(QStringList, existing);
    QFETCH(QStringList, missing);
    QFETCH(QString, recovered);
    writeJournal(info("recording").toJson(), recordText(3));
    for (const QString &name : existing)
        QVERIFY(writeFile(path(name), "earlier"));
    for (const QString &name : missing)
        QVERIFY(QDir().rmdir(path(name)));
    if (recovered.isEmpty())
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^Cannot recover .*records: .* tries again$"));

    recover();
    QCOMPARE(journalsIn(path("journal")).size(), recovered.isEmpty() ? 1 : 0);
    QCOMPARE(readFile(path(recovered)), recovered.isEmpty() ? QByteArray() : recordText(3));
    for (const QString &name : existing.filter("r_recovered"))
        QCOMPARE(readFile(path(name)), QByteArray("earlier"));
}

void TestJournalRecovery::running_recording_is_left_alone_until_its_program_ends() {
    QVERIFY(QDir().rmdir(path("journal/a")));
    JournaledRecording recording(path("journal"), path("target/r.csv"));
    recording.add(1, 20);
    QTRY_COMPARE(journalsIn(path("journal")).size(), 1);
    QTRY_COMPARE(readFile(journalsIn(path("journal")).first() + "/rows.csv"), recording.text());
    recover();
    QCOMPARE(QDir(path("target")).entryList(QDir::Files), QStringList());

    recording.add(21, 100);
    recording.abandon();
    recover();
    QCOMPARE(readFile(path("target/r_recovered.csv")), recording.text());
    QCOMPARE(journalsIn(path("journal")), QStringList());
}

void TestJournalRecovery::tracker_has_a_journal_until_its_recording_is_saved_or_discarded() {
    QVERIFY(QDir().rmdir(path("journal/a")));
    const auto journals = [this] { return journalsIn(path("journal")); };
    {
        FakeTracker tracker;
        tracker.setCalibratedArea(10, 20, 300, 200);
        recording_journal::enable(tracker, path("journal"), [] { return false; });
        tracker.startRecord(path("target/saved.csv"));
        QTRY_COMPARE(journals().size(), 1);
        tracker.stopRecord();
        QCOMPARE(journals(), QStringList());

        tracker.startRecord(path("target/r.csv"));
        for (int number = 1; number <= 300; ++number)
            tracker.addSample({number});
        QTRY_COMPARE(readFile(journals().value(0) + "/rows.csv").count('\n'), 301);
        const JournalInfo info = parseJournalInfo(readFile(journals().first() + "/recording.json")).info;
        QCOMPARE(info.targetPath, path("target/r.csv"));
        QCOMPARE(info.tracker, tracker.name());
        QCOMPARE(info.calibratedArea, QRect(10, 20, 300, 200));
        tracker.addSample({301});
        const QByteArray lastSample = readFile(journals().first() + "/samples.csv").split('\n').value(300);
        QCOMPARE(lastSample.split(',').first().toULongLong() + 1, tracker.lastNumberedSample().number);
    }
    recover();
    QCOMPARE(readFile(path("target/r_recovered.csv")).count('\n'), 302);
    QCOMPARE(QDir(path("target")).entryList(QDir::Files), QStringList({"r_recovered.csv", "saved.csv"}));
}

OCELA_TEST(TestJournalRecovery)
#include "tst_journal_recovery.moc"
