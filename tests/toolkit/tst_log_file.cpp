#include "support/test_main.h"
#include "toolkit/log_file.h"

#include <QDir>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>
#include <memory>
#include <thread>
#include <vector>

namespace {

constexpr qint64 mebibyte = 1 << 20;

QByteArray read(const QString &path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void write(LogFile &log, const QString &text) {
    log.write(QtInfoMsg, QMessageLogContext("", 0, "", "ocela.test"), text);
}

/// Where the log went before, while the file is tested.
QStringList &heard() {
    static QStringList texts;
    return texts;
}

void hear(QtMsgType, const QMessageLogContext &, const QString &text) {
    heard() << text;
}

}  // namespace

class TestLogFile : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void stays_small_and_keeps_the_newest_lines_data();
    void stays_small_and_keeps_the_newest_lines();
    void has_the_lines_of_several_threads_whole();
    void says_why_there_is_none();
    void installed_it_gets_what_is_logged_and_hands_it_on();
};

void TestLogFile::stays_small_and_keeps_the_newest_lines_data() {
    QTest::addColumn<int>("lines");
    QTest::addColumn<int>("length");
    QTest::addColumn<int>("startsEvery");
    QTest::addColumn<bool>("earlierIsHeld");
    QTest::newRow("many lines") << 20000 << 600 << 20000 << false;
    QTest::newRow("huge lines") << 800 << 1000000 << 800 << false;
    QTest::newRow("a start at each line") << 800 << 16000 << 1 << false;
    QTest::newRow("the earlier file cannot be replaced") << 800 << 16000 << 800 << true;
}

void TestLogFile::stays_small_and_keeps_the_newest_lines() {
    QFETCH(int, lines);
    QFETCH(int, length);
    QFETCH(int, startsEvery);
    QFETCH(bool, earlierIsHeld);
    const QTemporaryDir folder;
    const QString earlierPath = folder.filePath("logs/A.old.log");
    QVERIFY(!earlierIsHeld || QDir().mkpath(earlierPath + "/held"));

    const QString filling(length, 'x');
    std::unique_ptr<LogFile> log;
    for (int line = 0; line < lines; ++line) {
        if (line % startsEvery == 0)
            log = std::make_unique<LogFile>(folder.filePath("logs/A.log"));
        write(*log, QString("line %1 %2").arg(line).arg(filling));
    }

    const QByteArray current = read(folder.filePath("logs/A.log"));
    const QByteArray earlier = read(earlierPath);
    QVERIFY2(current.size() + earlier.size() < 10 * mebibyte, qPrintable(QString::number(current.size())));
    QVERIFY(earlierIsHeld || earlier.size() > 3 * mebibyte);
    for (const QByteArray &file : {current, earlier})
        QVERIFY(file.isEmpty() || file.left(200).contains(" on " + QSysInfo::prettyProductName().toUtf8()));
    const QByteArray newest = current.mid(current.lastIndexOf('\n', current.size() - 2) + 1);
    QVERIFY2(newest.contains(" line " + QByteArray::number(lines - 1) + " xxx"), newest.left(100).constData());
    QVERIFY(length < 1000000 || newest.endsWith("x ... (cut, 1000009 characters)\n"));
}

void TestLogFile::has_the_lines_of_several_threads_whole() {
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
    const QStringList lines = QString(read(folder.filePath("A.log"))).split('\n').filter(whole);
    QCOMPARE(lines.size(), 4 * 500);
    QCOMPARE(lines.filter(whole.match(lines.first()).captured(1)).size(), 500);
}

void TestLogFile::says_why_there_is_none() {
    const QTemporaryDir folder;
    QFile inTheWay(folder.filePath("file"));
    QVERIFY(inTheWay.open(QIODevice::WriteOnly));

    LogFile log(folder.filePath("file/A.log"));
    write(log, "to nowhere");
    QVERIFY(!log.problem().isEmpty());

    // Lines that come later are not lost.
    QVERIFY(inTheWay.remove() && QDir().mkpath(folder.filePath("file")));
    write(log, "to the file");
    QCOMPARE(log.problem(), QString());
    QVERIFY(read(folder.filePath("file/A.log")).endsWith(" to the file\n"));
}

void TestLogFile::installed_it_gets_what_is_logged_and_hands_it_on() {
    // The file stays open, so it lies in a folder that goes later.
    const QDir folder(qEnvironmentVariable("HOME"));
    const QtMessageHandler handlerOfTest = qInstallMessageHandler(hear);
    LogFile::install(folder.filePath("A.log"));
    qWarning("Ungültig:\nzwei Zeilen");
    qInstallMessageHandler(handlerOfTest);

    QCOMPARE(heard(), QStringList("Ungültig:\nzwei Zeilen"));
    const QString text = QString::fromUtf8(read(folder.filePath("A.log")));
    const QRegularExpression line(R"(\n[-\d]+T[:\d]+\.\d{3}Z warning default \[\d+\] Ungültig:\n    zwei Zeilen\n$)");
    QVERIFY2(line.match(text).hasMatch(), qPrintable(text));
}

OCELA_TEST(TestLogFile)
#include "tst_log_file.moc"
