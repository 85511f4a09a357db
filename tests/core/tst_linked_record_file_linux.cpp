#include "support/fake_tracker.h"
#include "support/file_content.h"
#include "support/test_main.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTemporaryDir>

class TestLinkedRecordFile : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void link_stays_and_the_earlier_data_is_kept() {
        const QTemporaryDir folder;
        QVERIFY(QDir(folder.path()).mkdir("data"));
        const QString link = folder.filePath("r.csv");
        QVERIFY(QFile::link("link.csv", link));
        QVERIFY(QFile::link("data/r.csv", folder.filePath("link.csv")));
        QVERIFY(QFile::link("cycle", folder.filePath("cycle")));
        FakeTracker tracker;
        QSignalSpy stopped(&tracker, &EyetrackerInterface::recordStopped);
        // The target of the link does not exist at the first stop.
        for (const qint64 timestamp : {1, 2}) {
            tracker.startRecord(link);
            tracker.addSample({timestamp});
            tracker.stopRecord();
            QCOMPARE(stopped.takeFirst(), QList<QVariant>{link});
        }
        QVERIFY(QFileInfo(link).isSymLink());
        QVERIFY(readFile(folder.filePath("data/r.csv")).contains("\n2,"));
        QVERIFY(readFile(folder.filePath("data/r_1.csv")).contains("\n1,"));

        tracker.startRecord(folder.filePath("cycle"));
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^Cannot save .*cycle: .+"));
        tracker.stopRecord();
        QCOMPARE(stopped.takeFirst(), QList<QVariant>{folder.filePath("cycle_1")});
    }
};

OCELA_TEST(TestLinkedRecordFile)
#include "tst_linked_record_file_linux.moc"
