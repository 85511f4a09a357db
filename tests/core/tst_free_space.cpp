#include "core/free_space.h"
#include "support/test_main.h"

#include <QDir>

class TestFreeSpace : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void warning_names_the_disk_that_is_full_first_data() {
        // The warning must contain these words.
        dataColumns<QString, qint64, qint64, QString>("journalDisk", "recordBytes", "journalBytes", "warning");
        const qint64 enough = free_space::enoughBytes;
        QTest::newRow("enough") << "/j" << enough << enough << "";
        QTest::newRow("record file") << "/j" << enough - 1 << enough << "500 MB|/r|100 samples|347 minutes";
        QTest::newRow("journal") << "/j" << enough << qint64(272 * 100 * 90) << "2 MB|/j|1.5 minutes";
        QTest::newRow("both on one disk") << "/r" << qint64(512 * 100 * 60) << qint64(512 * 100 * 60) << "3 MB|1.0 min";
    }
    void warning_names_the_disk_that_is_full_first() {
        QFETCH(QString, journalDisk);
        QFETCH(qint64, recordBytes);
        QFETCH(qint64, journalBytes);
        QFETCH(QString, warning);
        const QString text = free_space::warning({"/r", recordBytes, journalDisk, journalBytes}, 100);
        QCOMPARE(text.isEmpty(), warning.isEmpty());
        for (const QString &word : warning.split('|'))
            QVERIFY2(QDir::fromNativeSeparators(text).contains(word), qPrintable(text));
    }

    void disk_of_a_path_that_does_not_exist_is_found() {
        const free_space::Disks disks = free_space::read(QDir::tempPath() + "/no/such.csv", QDir::tempPath());
        QVERIFY(!disks.recordDisk.isEmpty());
        QCOMPARE(disks.recordDisk, disks.journalDisk);
    }
};

OCELA_TEST(TestFreeSpace)
#include "tst_free_space.moc"
