#include "core/journal_recovery.h"
#include "journaled_recording.h"
#include "support/file_content.h"
#include "support/test_main.h"

#include <QRegularExpression>

class TestJournalRecovery : public JournalTest {
    Q_OBJECT

private Q_SLOTS:
    void journal_is_recovered_kept_or_removed_data();
    void journal_is_recovered_kept_or_removed();
    void recovered_file_gets_a_free_name_in_a_folder_that_can_be_written_data();
    void recovered_file_gets_a_free_name_in_a_folder_that_can_be_written();
    void running_recording_is_left_alone_until_its_program_ends();

private:
    /// Returns the paths of the recovered files.
    QStringList recover() const;
    [[nodiscard]] JournalInfo info(const QString &phase) const;
    void writeJournal(const QByteArray &json, const QByteArray &rows) const;
};

QStringList TestJournalRecovery::recover() const {
    QStringList paths;
    JournalRecovery(path("journal"), path("records"), [&](const QString &recovered) {
        paths << recovered;
    }).waitForDone();
    return paths;
}

JournalInfo TestJournalRecovery::info(const QString &phase) const {
    JournalInfo info = JournaledRecording::info(target("r.csv"));
    info.phase = static_cast<JournalPhase>(QStringList({"recording", "saving", "saved", "discarded"}).indexOf(phase));
    info.savingPath = target("saved.csv");
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
    // "phase" may be the text of recording.json. "saved" is the file that was being saved. Null: no such file.
    dataColumns<QString, QByteArray, QByteArray, QByteArray, QStringList, QString>("phase", "rows", "saved",
                                                                                   "recovered", "journals", "warning");

    const QByteArray none;
    const QByteArray three = recordText(3);
    const QByteArray zeros(5000, '\0');
    const QStringList removed;
    const QStringList kept{"a"};
    const QStringList damaged{"a.damaged"};
    const QString damage = "^Cannot recover .*a.damaged: its .*";

    dataRow("complete rows", "recording", three, none, three, removed, "");
    dataRow("torn last row", "recording", recordText(4).chopped(1), none, three, removed, "");
    dataRow("zeros after a power failure", "recording", three + zeros, none, three, removed, "");
    dataRow("torn row and zeros", "recording", three + "3,0" + zeros, none, three, removed, "");
    dataRow("no rows", "recording", recordText(0), none, none, removed, "");
    dataRow("torn header", "recording", three.left(9), none, none, removed, "");
    dataRow("removal was interrupted", "recording", none, none, none, removed, "");
    dataRow("rest of a removal", QString(), none, none, none, removed, "");

    dataRow("row with text", "recording", three + "x" + three, none, none, damaged, damage);
    dataRow("row is too short", "recording", three + "1,2\r\n", none, none, damaged, damage);
    dataRow("rows after zeros", "recording", three + zeros + three, none, none, damaged, damage);
    dataRow("another header", "recording", QByteArray("A\r\n1\r\n"), none, none, damaged, damage);
    dataRow("torn description", "{\"format\": 1, \"pha", three, none, none, damaged, damage);
    dataRow("no description", QString(), three, none, none, damaged, damage);
    dataRow("no target", "{\"format\": 1, \"phase\": \"recording\"}", three, none, none, damaged, damage);
    dataRow("another format", "{\"format\": 2}", three, none, none, kept, "^Another version of .*a.");

    dataRow("saved", "saved", three, none, none, removed, "");
    dataRow("discarded", "discarded", three, none, none, removed, "");
    dataRow("saving, file not named yet", "saving", three, none, three, removed, "");
    dataRow("saving, file is complete", "saving", three, three, none, removed, "");
    dataRow("saving, file has rows that the journal lacks", "saving", recordText(2), three, none, removed, "");
    dataRow("saving, another file has the name", "saving", three, QByteArray(three).replace("\n0,0,1", "\n9,0,1"),
            three, removed, "");
    dataRow("saving, the file is too short", "saving", three, recordText(2), three, removed, "");
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
        QVERIFY(writeFile(target("saved.csv"), saved));
    if (!warning.isEmpty())
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(warning));

    QCOMPARE(recover(), recovered.isNull() ? QStringList() : QStringList(target("r_recovered.csv")));
    QCOMPARE(readFile(target("r_recovered.csv")), recovered);
    QCOMPARE(readFile(target("saved.csv")), saved);
    QCOMPARE(QDir(path("journal")).entryList(QDir::Dirs | QDir::NoDotAndDotDot), journals);
    if (!journals.isEmpty())
        QCOMPARE(readFile(path("journal/") + journals.first() + "/rows.csv"), rows);
    const int fileCount = !recovered.isNull() + !saved.isNull();
    QCOMPARE(files("target").size(), fileCount);
}

void TestJournalRecovery::recovered_file_gets_a_free_name_in_a_folder_that_can_be_written_data() {
    dataColumns<QStringList, QStringList, QString>("existing", "missing", "recovered");

    dataRow("name is taken", QStringList{"target/r_recovered.csv", "target/r_recovered_1.csv"}, QStringList(),
            "target/r_recovered_2.csv");
    dataRow("left by an interrupted recovery", QStringList{"target/.a.recovering"}, QStringList(),
            "target/r_recovered.csv");
    dataRow("folder is missing", QStringList(), QStringList{"target"}, "records/r_recovered.csv");
    dataRow("no folder", QStringList(), QStringList{"target", "records"}, QString());
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
    JournaledRecording recording(path("journal"), target("r.csv"));
    recording.add(1, 20);
    QTRY_COMPARE(journalsIn(path("journal")).size(), 1);
    QTRY_COMPARE(readFile(journalsIn(path("journal")).first() + "/rows.csv"), recording.text());
    recover();
    QCOMPARE(files("target"), QStringList());

    recording.add(21, 100);
    recording.abandon();
    recover();
    QCOMPARE(readFile(target("r_recovered.csv")), recording.text());
    QCOMPARE(journalsIn(path("journal")), QStringList());
}

OCELA_TEST(TestJournalRecovery)
#include "tst_journal_recovery.moc"
