#include "support/test_main.h"
#include "toolkit/file_utilities.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

class TestFileUtilitiesLinux : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void empties_the_folder_that_a_link_stands_for();
};

void TestFileUtilitiesLinux::empties_the_folder_that_a_link_stands_for() {
    const QTemporaryDir folder;
    const QString link = folder.filePath("link");
    QVERIFY(QDir(folder.path()).mkpath("sdk/deep"));
    QVERIFY(QFile::link(folder.filePath("sdk"), link));
    QVERIFY(FileUtilities::clearFolder(link + '/', true));
    QVERIFY(!QFileInfo(link).isSymLink());
    QVERIFY(QDir(folder.filePath("sdk")).exists());
    QVERIFY(QDir(folder.filePath("sdk")).isEmpty());
}

OCELA_TEST(TestFileUtilitiesLinux)
#include "tst_file_utilities_linux.moc"
