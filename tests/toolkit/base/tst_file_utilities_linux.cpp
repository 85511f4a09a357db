#include "support/test_main.h"
#include "toolkit/base/file_utilities.h"

#include <QDir>
#include <QTemporaryDir>

class TestFileUtilitiesLinux : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void empties_the_target_of_a_link_and_removes_the_link() {
        const QTemporaryDir folder;
        const QString link = folder.filePath("link");
        QVERIFY(QDir(folder.path()).mkpath("sdk/deep"));
        QVERIFY(QFile::link(folder.filePath("sdk"), link));
        QVERIFY(FileUtilities::clearFolder(link + '/', true));
        QVERIFY(!QFileInfo(link).isSymLink());
        QVERIFY(QDir(folder.filePath("sdk")).exists());
        QVERIFY(QDir(folder.filePath("sdk")).isEmpty());
    }
};

OCELA_TEST(TestFileUtilitiesLinux)
#include "tst_file_utilities_linux.moc"
