#include "support/test_main.h"
#include "toolkit/file_utilities.h"

#include <QDir>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

class TestFileUtilities : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { dir_ = std::make_unique<QTemporaryDir>(); }
    void creates_a_folder_or_says_why_not();
    void empties_a_folder();
    void removes_links_but_not_their_targets();

private:
    QString path(const QString &name) const { return dir_->filePath(name); }
    static void write(const QString &file) {
        QDir().mkpath(QFileInfo(file).path());
        QFile out(file);
        QVERIFY(out.open(QIODevice::WriteOnly));
    }

    std::unique_ptr<QTemporaryDir> dir_;
};

void TestFileUtilities::creates_a_folder_or_says_why_not() {
    QVERIFY(FileUtilities::createIfNotExists(path("a/b/c/")));
    QVERIFY2(FileUtilities::createIfNotExists(path("a/b/c")), "one that exists is a success");
    write(path("file"));
    const QString pattern = QRegularExpression::escape(QDir::toNativeSeparators(path("file/folder"))) +
                            ": (Not a directory|File already exists|The system cannot find the path)";
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(pattern));
    QVERIFY(!FileUtilities::createIfNotExists(path("file/folder")));
}

void TestFileUtilities::empties_a_folder() {
    write(path("sdk/model.bin"));
    write(path("sdk/.hidden"));
    write(path("sdk/deep/er/file"));
    QVERIFY(FileUtilities::clearFolder(path("sdk"), false));
    QVERIFY(QFileInfo(path("sdk")).isDir());
    QVERIFY(QDir(path("sdk")).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot));
}

void TestFileUtilities::removes_links_but_not_their_targets() {
    write(path("outside/precious"));
    write(path("sdk/file"));
    QVERIFY(QFile::link(path("outside"), path("sdk/link to folder.lnk")));
    QVERIFY(FileUtilities::clearFolder(path("sdk"), false));
    QVERIFY(QDir(path("sdk")).isEmpty());
    QVERIFY(QFileInfo::exists(path("outside/precious")));
}

OCELA_TEST(TestFileUtilities)
#include "tst_file_utilities.moc"
