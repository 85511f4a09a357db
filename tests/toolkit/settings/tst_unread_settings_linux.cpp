#include "support/file_content.h"
#include "support/sample_settings.h"
#include "support/test_main.h"

#include <QDir>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QThread>
#include <cstdio>
#include <thread>

/// Tests settings files that exist, but cannot be read now. Reading /proc/self/mem fails for every user.
class TestUnreadSettings : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void file_is_neither_renamed_nor_overwritten();
    void file_is_read_as_soon_as_possible();
    void damaged_file_that_cannot_be_renamed_is_kept();
};

namespace {

const QByteArray stored = "<settings><property name=\"TimeMs\">1500</property></settings>";

void makeUnreadable(const QString &path) {
    QVERIFY(QFile::link("/proc/self/mem", path));
}

void replaceByFile(const QString &path) {
    const QString name = path + ".new";
    QVERIFY(writeFile(name, stored));
    QCOMPARE(std::rename(QFile::encodeName(name).constData(), QFile::encodeName(path).constData()), 0);
}

}  // namespace

void TestUnreadSettings::file_is_neither_renamed_nor_overwritten() {
    for (const bool isFolder : {false, true}) {
        const QTemporaryDir folder;
        const QString path = folder.filePath("settings.xml");
        SampleSettings settings(path);
        settings.setTimeMs(3000);
        QVERIFY(QFile::remove(path));
        if (isFolder)
            QVERIFY(QDir().mkdir(path));
        else
            makeUnreadable(path);

        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("Settings file .*settings.xml cannot be read: .+; the "
                                                              "defaults apply, and changes are not saved"));
        QVERIFY(!settings.reload());
        QVERIFY(!settings.readProblem().isEmpty());
        QCOMPARE(settings.getTimeMs(), 2000);
        settings.setTimeMs(4000);
        QVERIFY(!settings.save());
        const auto entries = QDir(folder.path()).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot);
        QCOMPARE(entries, QStringList("settings.xml"));
        QCOMPARE(QFileInfo(path).isSymLink(), !isFolder);

        QVERIFY(isFolder ? QDir().rmdir(path) : QFile::remove(path));
        QVERIFY(writeFile(path, stored));
        QVERIFY(settings.reload());
        QCOMPARE(settings.getTimeMs(), 1500);
        settings.setTimeMs(1600);
        QVERIFY(readFile(path).contains("1600"));
    }
}

void TestUnreadSettings::file_is_read_as_soon_as_possible() {
    const QTemporaryDir folder;
    const QString path = folder.filePath("settings.xml");
    makeUnreadable(path);
    std::thread backup([&] {
        QThread::msleep(300);
        replaceByFile(path);
    });
    SampleSettings settings(path);
    const bool loaded = settings.reload();
    backup.join();
    QVERIFY(loaded);
    QCOMPARE(settings.readProblem(), QString());
    QCOMPARE(settings.getTimeMs(), 1500);
}

void TestUnreadSettings::damaged_file_that_cannot_be_renamed_is_kept() {
    const QTemporaryDir folder;
    const QString path = folder.filePath(QString(255, 'n'));  // no room for ".damaged"
    QVERIFY(writeFile(path, "<settings>"));
    SampleSettings settings(path);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("cannot be used: line 1: .*; it could not be renamed; "));
    QVERIFY(!settings.reload());
    QCOMPARE(settings.readProblem(), QString("it is damaged and cannot be renamed"));
    settings.setTimeMs(4000);
    QCOMPARE(readFile(path), QByteArray("<settings>"));
}

OCELA_TEST(TestUnreadSettings)
#include "tst_unread_settings_linux.moc"
