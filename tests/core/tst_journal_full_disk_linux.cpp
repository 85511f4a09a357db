#include "journaled_recording.h"
#include "support/file_content.h"
#include "support/file_size_limit.h"
#include "support/test_main.h"

#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>
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
