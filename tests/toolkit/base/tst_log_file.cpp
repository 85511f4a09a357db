#include "support/file_content.h"
#include "support/test_main.h"
#include "toolkit/base/log_file.h"

#include <QDir>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <memory>
#include <thread>
#include <vector>

namespace {

constexpr qint64 mebibyte = 1 << 20;

void write(LogFile &log, const QString &text) {
    log.write(QtInfoMsg, QMessageLogContext("", 0, "", "ocela.test"), text);
}

/// The messages that the previous handler received.
QStringList received;

}  // namespace

class TestLogFile : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void limits_its_size_and_keeps_the_newest_lines_data();
    void limits_its_size_and_keeps_the_newest_lines();
    void keeps_the_lines_of_several_threads_complete();
    void reports_why_the_file_cannot_be_opened();
    void installed_handler_writes_messages_and_calls_the_previous_handler();
};

void TestLogFile::limits_its_size_and_keeps_the_newest_lines_data() {
    dataColumns<int, int, int, bool>("lines", "length", "linesPerStart", "oldFileIsBlocked");
    QTest::newRow("many lines") << 20000 << 600 << 20000 << false;
    QTest::newRow("huge lines") << 800 << 1000000 << 800 << false;
    QTest::newRow("a program start for each line") << 800 << 16000 << 1 << false;
    QTest::newRow("old file cannot be replaced") << 800 << 16000 << 800 << true;
}

void TestLogFile::limits_its_size_and_keeps_the_newest_lines() {
    QFETCH(int, lines);
    QFETCH(int, length);
    QFETCH(int, linesPerStart);
    QFETCH(bool, oldFileIsBlocked);
    const QTemporaryDir folder;
    const QString earlierPath = folder.filePath("logs/A.old.log");
    QVERIFY(!oldFileIsBlocked || QDir().mkpath(earlierPath + "/file"));

    const QString filling(length, 'x');
    std::unique_ptr<LogFile> log;
    for (int line = 0; line < lines; ++line) {
        if (line % linesPerStart == 0)
            log = std::make_unique<LogFile>(folder.filePath("logs/A.log"));
        write(*log, QString("line %1 %2").arg(line).arg(filling));
    }

    const QByteArray current = readFile(folder.filePath("logs/A.log"));
    const QByteArray earlier = readFile(earlierPath);
    QVERIFY2(current.size() + earlier.size() < 10 * mebibyte, qPrintable(QString::number(current.size())));
    QVERIFY(oldFileIsBlocked || earlier.size() > 3 * mebibyte);
    for (const QByteArray &file : {current, earlier})
        QVERIFY(file.isEmpty() || file.left(200).contains(" on " + QSysInfo::prettyProductName().toUtf8()));
    const QByteArray newest = current.mid(current.lastIndexOf('\n', current.size() - 2) + 1);
    QVERIFY2(newest.contains(" line " + QByteArray::number(lines - 1) + " xxx"), newest.left(100).constData());
    QVERIFY(length < 1000000 || newest.endsWith("x ... (truncated from 1000009 characters)\n"));
}

void TestLogFile::keeps_the_lines_of_several_threads_complete() {
    const QTemporaryDir folder;
    LogFile log(folder.filePath("A.log"));
    std::vector<std::thread> threads;
    for (const char letter : {'a', 'b', 'c', 'd'})
        threads.emplace_back([&log, letter] {
            for (int i = 0; i < 500; ++i)
                write(log, '<' + QString(100, letter) + '>');
        });
    for (std::thread &thread : threads)
        thread.join();

    const QRegularExpression whole(R"(info ocela\.test (\[\d+\]) <(a{100}|b{100}|c{100}|d{100})>$)");
    const QStringList lines = QString(readFile(folder.filePath("A.log"))).split('\n').filter(whole);
    QCOMPARE(lines.size(), 4 * 500);
    QCOMPARE(lines.filter(whole.match(lines.first()).captured(1)).size(), 500);
}

void TestLogFile::reports_why_the_file_cannot_be_opened() {
    const QTemporaryDir folder;
    QVERIFY(writeFile(folder.filePath("file"), ""));

    LogFile log(folder.filePath("file/A.log"));
    write(log, "dropped");
    QVERIFY(!log.problem().isEmpty());

    // The file is opened again for later lines.
    QVERIFY(QFile::remove(folder.filePath("file")) && QDir().mkpath(folder.filePath("file")));
    write(log, "written");
    QCOMPARE(log.problem(), QString());
    QVERIFY(readFile(folder.filePath("file/A.log")).endsWith(" written\n"));
}

void TestLogFile::installed_handler_writes_messages_and_calls_the_previous_handler() {
    // The file stays open, so it must be in a folder that is removed after this test.
    const QDir folder(qEnvironmentVariable("HOME"));
    const QtMessageHandler handlerOfTest =
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &text) { received << text; });
    LogFile::install(folder.filePath("A.log"));
    qWarning("Ungültig:\nzwei Zeilen");
    qInstallMessageHandler(handlerOfTest);

    QCOMPARE(received, QStringList("Ungültig:\nzwei Zeilen"));
    const QString text = QString::fromUtf8(readFile(folder.filePath("A.log")));
    const QRegularExpression line(R"(\n[-\d]+T[:\d]+\.\d{3}Z warning default \[\d+\] Ungültig:\n    zwei Zeilen\n$)");
    QVERIFY2(line.match(text).hasMatch(), qPrintable(text));
}

OCELA_TEST(TestLogFile)
#include "tst_log_file.moc"
