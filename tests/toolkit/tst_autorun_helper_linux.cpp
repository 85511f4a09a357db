#include "support/test_main.h"
#include "toolkit/autorun_helper.h"
#include "toolkit/desktop_entry.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

class TestAutorunHelper : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void quotes_the_program_data();
    void quotes_the_program();
    void adds_and_removes_the_program_data();
    void adds_and_removes_the_program();
    void refuses_a_program_that_is_not_there();
    void says_why_it_cannot_write();

private:
    QString entryFile(const QString &folder) const;

    // This test's own executable stands for the program: it lies in the application's folder.
    const QString program_ = QFileInfo(QCoreApplication::applicationFilePath()).fileName();
    std::unique_ptr<QTemporaryDir> dir_;
};

void TestAutorunHelper::init() {
    dir_ = std::make_unique<QTemporaryDir>();
    qputenv("XDG_CONFIG_HOME", dir_->filePath("user").toLocal8Bit());
    qputenv("XDG_CONFIG_DIRS", dir_->filePath("machine").toLocal8Bit());
}

void TestAutorunHelper::cleanup() {
    qunsetenv("XDG_CONFIG_HOME");
    qunsetenv("XDG_CONFIG_DIRS");
}

QString TestAutorunHelper::entryFile(const QString &folder) const {
    return dir_->filePath(folder + "/autostart/" + program_ + ".desktop");
}

void TestAutorunHelper::quotes_the_program_data() {
    QTest::addColumn<QString>("program");
    QTest::addColumn<QByteArray>("exec");
    QTest::addColumn<QByteArray>("path");
    const auto row = [](const char *name, const char *program, const char *exec, const char *path) {
        QTest::newRow(name) << QString::fromUtf8(program) << QByteArray(exec) << QByteArray(path);
    };
    row("blanks and Cyrillic", "/home/Анна/my apps/Ocela", R"(Exec="/home/Анна/my apps/Ocela")",
        "Path=/home/Анна/my apps");
    row("what a shell would expand", R"(/a$b`c"d/Ocela)", R"(Exec="/a\\$b\\`c\\"d/Ocela")", R"(Path=/a$b`c"d)");
    row("a backslash is escaped twice", R"(/a\b/Ocela)", R"(Exec="/a\\\\b/Ocela")", R"(Path=/a\\b)");
    row("a percent sign is no field code", "/100%f/Ocela", R"(Exec="/100%%f/Ocela")", "Path=/100%f");
    row("a line break starts no new key", "/a\nHidden=true/Ocela", R"(Exec="/a\nHidden=true/Ocela")",
        R"(Path=/a\nHidden=true)");
}

void TestAutorunHelper::quotes_the_program() {
    QFETCH(QString, program);
    QFETCH(QByteArray, exec);
    QFETCH(QByteArray, path);
    const QList<QByteArray> lines = desktopEntry(program).split('\n');
    QCOMPARE(lines.first(), QByteArray("[Desktop Entry]"));
    for (const QByteArray &line : {QByteArray("Type=Application"), QByteArray("Name=Ocela"), exec, path})
        QVERIFY2(lines.contains(line), lines.join('\n'));
}

void TestAutorunHelper::adds_and_removes_the_program_data() {
    QTest::addColumn<bool>("allUsers");
    QTest::addColumn<QString>("folder");
    QTest::newRow("this user") << false << "user";
    QTest::newRow("all users") << true << "machine";
}

void TestAutorunHelper::adds_and_removes_the_program() {
    QFETCH(bool, allUsers);
    QFETCH(QString, folder);
    // Once more over what is there, as after a move of the program.
    for (int time = 0; time < 2; ++time)
        QVERIFY(AutorunHelper::setAppInAutorunUsingExe(program_ + ".exe", true, allUsers));
    QFile entry(entryFile(folder));
    QVERIFY(entry.open(QIODevice::ReadOnly));
    QCOMPARE(entry.readAll(), desktopEntry(QCoreApplication::applicationFilePath()));
    QCOMPARE(QDir(QFileInfo(entry).path()).entryList(QDir::Files).size(), 1);

    for (int time = 0; time < 2; ++time)
        QVERIFY(AutorunHelper::setAppInAutorunUsingExe(program_ + ".EXE", false, allUsers));
    QVERIFY(!entry.exists());
}

void TestAutorunHelper::refuses_a_program_that_is_not_there() {
    const QString missing = QCoreApplication::applicationDirPath() + "/NoSuchProgram";
    QTest::ignoreMessage(QtWarningMsg,
                         qPrintable("Cannot start with the system " + missing + ": there is no such program"));
    QVERIFY(!AutorunHelper::setAppInAutorunUsingExe("NoSuchProgram.exe", true, false));
}

void TestAutorunHelper::says_why_it_cannot_write() {
    QVERIFY(QDir().mkpath(entryFile("user")));  // a folder stands where the file should
    const QRegularExpression warning(QRegularExpression::escape(entryFile("user")) + ": .+");
    QTest::ignoreMessage(QtWarningMsg, warning);
    QVERIFY(!AutorunHelper::setAppInAutorunUsingExe(program_ + ".exe", true, false));
}

OCELA_TEST(TestAutorunHelper)
#include "tst_autorun_helper_linux.moc"
