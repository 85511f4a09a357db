#include "support/test_main.h"
#include "toolkit/platform/autorun_helper.h"
#include "toolkit/platform/desktop_entry.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTemporaryDir>

class TestAutorunHelper : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void quotes_the_path_of_the_program();
    void adds_and_removes_the_program();
    void logs_why_it_cannot_write();

private:
    QString entryFile(const QString &folder) const {
        return dir_->filePath(folder + "/autostart/" + program_ + ".desktop");
    }

    // The executable of this test, which is in the application's folder.
    const QString program_ = QFileInfo(QCoreApplication::applicationFilePath()).fileName();
    std::unique_ptr<QTemporaryDir> dir_;
};

void TestAutorunHelper::init() {
    dir_ = std::make_unique<QTemporaryDir>();
    qputenv("XDG_CONFIG_HOME", dir_->filePath("user").toLocal8Bit());
    qputenv("XDG_CONFIG_DIRS", dir_->filePath("machine").toLocal8Bit());
}

void TestAutorunHelper::quotes_the_path_of_the_program() {
    // A shell variable, a percent sign that is not a field code, and a line break that must not start a key.
    const QByteArray entry = desktopEntry("/100%f\nHidden=true/my $apps/Oce\\la");
    QVERIFY2(entry.startsWith("[Desktop Entry]\n"), entry);
    QVERIFY2(entry.contains(R"(Exec="/100%%f\nHidden=true/my \\$apps/Oce\\\\la")"), entry);
    QVERIFY2(entry.contains(R"(TryExec=/100%f\nHidden=true/my $apps/Oce\\la)"), entry);
    QVERIFY2(entry.contains(R"(Path=/100%f\nHidden=true/my $apps)"), entry);
}

void TestAutorunHelper::adds_and_removes_the_program() {
    for (const bool allUsers : {false, true}) {
        QVERIFY(AutorunHelper::setAppInAutorunUsingExe(program_ + ".exe", true, allUsers));
        QFile entry(entryFile(allUsers ? "machine" : "user"));
        QVERIFY(entry.open(QIODevice::ReadOnly));
        QCOMPARE(entry.readAll(), desktopEntry(QCoreApplication::applicationFilePath()));
        QVERIFY(AutorunHelper::setAppInAutorunUsingExe(program_ + ".EXE", false, allUsers));
        QVERIFY(!entry.exists());
    }
}

void TestAutorunHelper::logs_why_it_cannot_write() {
    QVERIFY(QDir().mkpath(entryFile("user")));  // a folder with the name of the file
    const QRegularExpression warning(QRegularExpression::escape(entryFile("user")) + ": .+");
    QTest::ignoreMessage(QtWarningMsg, warning);
    QVERIFY(!AutorunHelper::setAppInAutorunUsingExe(program_ + ".exe", true, false));
}

OCELA_TEST(TestAutorunHelper)
#include "tst_autorun_helper_linux.moc"
