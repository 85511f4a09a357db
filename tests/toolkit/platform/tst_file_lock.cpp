#include "support/test_main.h"
#include "toolkit/platform/file_lock.h"

#include <QFile>
#include <QTemporaryDir>

class TestFileLock : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void lock_has_one_holder_until_it_is_released() {
        const QTemporaryDir folder;
        const QString path = folder.filePath("lock");
        FileLock second;
        {
            FileLock first;
            QVERIFY(first.tryLock(path));
            QVERIFY(!first.tryLock(folder.filePath("other")));
            QVERIFY(!second.tryLock(path));
        }
        QVERIFY(second.tryLock(path));
        second.unlock();
        QVERIFY2(QFile::remove(path), "the file is still open");
        QVERIFY(!second.tryLock(folder.filePath("missing/lock")));
    }
};

OCELA_TEST(TestFileLock)
#include "tst_file_lock.moc"
