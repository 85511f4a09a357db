#include "core/journal_recovery.h"
#include "core/markers.h"
#include "core/recording_journal.h"
#include "journaled_recording.h"
#include "support/fake_tracker.h"
#include "support/file_content.h"
#include "support/file_size_limit.h"
#include "support/test_main.h"

#include <QRegularExpression>
#include <QTemporaryDir>
#include <cerrno>

class TestJournalFullDisk : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void full_disk_pauses_the_journal_with_one_warning_until_there_is_room() {
        const QTemporaryDir folder;
        JournaledRecording recording(folder.filePath("journal"), folder.filePath("r.csv"));
        recording.add(1, 5);
        QTRY_COMPARE(journalsIn(folder.filePath("journal")).size(), 1);
        const QString rows = journalsIn(folder.filePath("journal")).first() + "/rows.csv";
        QTRY_COMPARE(readFile(rows), recording.text());
        {
            const FileSizeLimit limit(4000);
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression("pauses.*: " + qt_error_string(EFBIG) + '$'));
            recording.add(6, 500);
            // Longer than two retries: there is no second warning.
            QTest::qWait(static_cast<int>((2 * JournalWriter::retryInterval + JournalWriter::takeInterval).count()));
            QVERIFY(readFile(rows).size() <= 4000);
            QVERIFY(recording.text().startsWith(readFile(rows).left(1000)));
        }
        recording.add(501, 520);
        QTRY_COMPARE(readFile(rows), recording.text());
        QTRY_VERIFY(continued_);
    }

    void markers_that_cannot_be_saved_stay_in_the_journal() {
        const QTemporaryDir folder;
        const auto recover = [&] { JournalRecovery(folder.filePath("journal"), folder.path()).waitForDone(); };
        const QRegularExpression warning("^Cannot save .*_events.csv, which .*: " + qt_error_string(EFBIG) + '$');
        FakeTracker tracker;
        Markers markers(nullptr);
        markers.setTrackers({&tracker});
        recording_journal::enable(tracker, folder.filePath("journal"), [] { return false; });
        tracker.startRecord(folder.filePath("r.csv"));
        tracker.addSample({1});
        for (int i = 0; i < 50; ++i)
            QVERIFY(markers.add(QString(Markers::maxTextLength, 'x')).recorded);
        QTRY_COMPARE(readFile(journalsIn(folder.filePath("journal")).value(0) + "/markers.csv").count('\n'), 51);
        {
            const FileSizeLimit limit(10'000);
            // The file is tried under two names by the recording, and by the recovery.
            for (int i = 0; i < 4; ++i)
                QTest::ignoreMessage(QtWarningMsg, warning);
            tracker.stopRecord();
            recover();
        }
        QCOMPARE(readFile(folder.filePath("r.csv")).count('\n'), 2);
        recover();
        QCOMPARE(readFile(folder.filePath("r_events.csv")).count('\n'), 51);
        QCOMPARE(QDir(folder.path()).entryList(QDir::Files), QStringList({"r.csv", "r_events.csv"}));
        QCOMPARE(journalsIn(folder.filePath("journal")), QStringList());
    }

    void initTestCase() {
        previous_ = qInstallMessageHandler([](QtMsgType type, const QMessageLogContext &context, const QString &text) {
            continued_ = continued_ || text.startsWith("The journal of the recording continues");
            previous_(type, context, text);
        });
    }
    void cleanupTestCase() { qInstallMessageHandler(previous_); }

private:
    static std::atomic<bool> continued_;
    static QtMessageHandler previous_;
};

std::atomic<bool> TestJournalFullDisk::continued_{false};
QtMessageHandler TestJournalFullDisk::previous_ = nullptr;

OCELA_TEST(TestJournalFullDisk)
#include "tst_journal_full_disk_linux.moc"
