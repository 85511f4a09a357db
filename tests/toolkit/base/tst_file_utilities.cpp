#include "support/file_content.h"
#include "support/test_main.h"
#include "toolkit/base/file_utilities.h"

#include <QDir>
#include <QRegularExpression>
#include <QTemporaryDir>

class TestFileUtilities : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { dir_ = std::make_unique<QTemporaryDir>(); }
    void creates_a_folder_or_logs_the_reason();
    void empties_a_folder_but_not_the_targets_of_links();

private:
    QString path(const QString &name) const { return dir_->filePath(name); }
    static void write(const QString &file) {
        QDir().mkpath(QFileInfo(file).path());
        QVERIFY(writeFile(file, ""));
    }

    std::unique_ptr<QTemporaryDir> dir_;
};

void TestFileUtilities::creates_a_folder_or_logs_the_reason() {
    QVERIFY(FileUtilities::createIfNotExists(path("a/b/c/")));
    QVERIFY2(FileUtilities::createIfNotExists(path("a/b/c")), "the folder exists");
    write(path("file"));
    const QString pattern = QRegularExpression::escape(QDir::toNativeSeparators(path("file/folder"))) +
                            ": (Not a directory|File already exists|The system cannot find the path)";
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(pattern));
    QVERIFY(!FileUtilities::createIfNotExists(path("file/folder")));
}

void TestFileUtilities::empties_a_folder_but_not_the_targets_of_links() {
    write(path("sdk/model.bin"));
    write(path("sdk/.hidden"));
    write(path("sdk/a/b/file"));
    write(path("outside/file"));
    QVERIFY(QFile::link(path("outside"), path("sdk/link to folder.lnk")));
    QVERIFY(FileUtilities::clearFolder(path("sdk"), false));
    QVERIFY(QFileInfo(path("sdk")).isDir());
    QVERIFY(QDir(path("sdk")).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot));
    QVERIFY(QFileInfo::exists(path("outside/file")));
}

OCELA_TEST(TestFileUtilities)
#include "tst_file_utilities.moc"
