#include "support/file_content.h"
#include "support/test_main.h"
#include "toolkit/base/file_utilities.h"
#include "toolkit/base/new_file.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

namespace {

bool writeNew(QSaveFile &file) {
    return FileUtilities::writeAll(file, "new", 3);
}

/// Returns the entries of a folder, a file as "name=content" and a folder as "name/".
QStringList contentOf(const QString &folder) {
    QStringList entries;
    for (const QFileInfo &entry : QDir(folder).entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot))
        entries << entry.fileName() + (entry.isDir() ? QString("/") : '=' + QString(readFile(entry.filePath())));
    return entries;
}

}  // namespace

class TestNewFile : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void replaces_no_other_file_data();
    void replaces_no_other_file();
    void keeps_a_file_that_appears_just_before_the_renaming();
    void tells_why_it_cannot_be_written();
};

void TestNewFile::replaces_no_other_file_data() {
    QTest::addColumn<QStringList>("before");
    QTest::addColumn<bool>("getsName");
    QTest::addColumn<QStringList>("after");
    QTest::newRow("free name") << QStringList() << true << QStringList{"a.csv=new"};
    QTest::newRow("file") << QStringList{"a.csv", "a_1.csv", "a_2.csv/"} << true
                          << QStringList{"a.csv=new", "a_1.csv=a_1.csv", "a_2.csv/", "a_3.csv=a.csv"};
    QTest::newRow("folder") << QStringList{"a.csv/", "a_1.csv"} << false
                            << QStringList{"a.csv/", "a_1.csv=a_1.csv", "a_2.csv=new"};
}

void TestNewFile::replaces_no_other_file() {
    QFETCH(QStringList, before);
    QFETCH(bool, getsName);
    const QTemporaryDir folder;
    const QString path = folder.filePath("a.csv");
    for (const QString &name : before)
        QVERIFY(name.endsWith('/') ? QDir(folder.path()).mkdir(name) : writeFile(folder.filePath(name), name.toUtf8()));
    QStringList announced;
    {
        NewFile file(folder.path(), [&](const QString &name) {
            QVERIFY2(!QFileInfo::exists(name), qPrintable(name));
            announced << name;
        });
        QVERIFY(file.write(writeNew));
        QCOMPARE(file.takeName(path), getsName);
        QVERIFY(getsName || file.takeFreeName(path));
        QCOMPARE(announced, QStringList{file.name()});
    }
    QTEST(contentOf(folder.path()), "after");
}

void TestNewFile::keeps_a_file_that_appears_just_before_the_renaming() {
    const QTemporaryDir folder;
    const auto otherProgram = [](const QString &name) {
        if (!name.endsWith("_2.csv"))
            writeFile(name, "other");
    };
    {
        NewFile file(folder.path(), otherProgram);
        QVERIFY(file.write(writeNew));
        QVERIFY(!file.takeName(folder.filePath("a.csv")));
        QVERIFY(file.takeFreeName(folder.filePath("a.csv")));
        NewFile unnamed(folder.path());
        QVERIFY(unnamed.write(writeNew));
    }
    QCOMPARE(contentOf(folder.path()), QStringList({"a.csv=other", "a_1.csv=other", "a_2.csv=new"}));
}

void TestNewFile::tells_why_it_cannot_be_written() {
    const QTemporaryDir folder;
    NewFile file(folder.filePath("missing"));
    QVERIFY(!file.write(writeNew));
    QVERIFY(!file.problem().isEmpty());

    NewFile renamed(folder.path());
    QVERIFY(renamed.write(writeNew));
    QVERIFY(!renamed.takeFreeName(folder.filePath("missing/a.csv")));
    QVERIFY(!renamed.problem().isEmpty());
    // The system would read only the name before the NUL.
    const QString nulName = folder.filePath(QString::fromLatin1("a\0b.csv", 7));
    QVERIFY(file_names::renameIfFree(folder.path(), nulName).outcome == file_names::Renaming::Outcome::Failed);
}

OCELA_TEST(TestNewFile)
#include "tst_new_file.moc"
