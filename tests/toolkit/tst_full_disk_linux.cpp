#include "support/test_main.h"
#include "toolkit/log_file.h"
#include "toolkit/numeric_table_csv.h"
#include "toolkit/settings_file.h"

#include <QDir>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>
#include <cerrno>
#include <csignal>
#include <sys/resource.h>

namespace {

class Table : public NumericTableCSV {
public:
    explicit Table(int rows) {
        setHeaders({"A"});
        for (int row = 0; row < rows; ++row)
            rows_.append({row});
    }
};

/// While it lives, files end at `bytes`: what goes beyond is taken in part first and then refused, as on a disk
/// that fills.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit limit = {bytes, before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, handler_);
    }
    Q_DISABLE_COPY(FileSizeLimit)

private:
    void (*handler_)(int);
    rlimit before_ = {};
};

}  // namespace

class TestFullDisk : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void table_tells_what_is_wrong_and_leaves_nothing_data();
    void table_tells_what_is_wrong_and_leaves_nothing();
    void settings_tell_what_is_wrong_and_keep_the_earlier_file();
    void log_drops_whole_lines_and_goes_on();
};

void TestFullDisk::table_tells_what_is_wrong_and_leaves_nothing_data() {
    QTest::addColumn<int>("rows");
    QTest::newRow("short table") << 400;
    QTest::newRow("long table") << 100000;
}

void TestFullDisk::table_tells_what_is_wrong_and_leaves_nothing() {
    QFETCH(int, rows);
    const QTemporaryDir folder;
    const FileSizeLimit limit(1000);

    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^Cannot save .*: " + qt_error_string(EFBIG) + '$'));
    QVERIFY(!Table(rows).save(folder.filePath("t.csv"), true));
    QCOMPARE(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden), QStringList());
}

void TestFullDisk::settings_tell_what_is_wrong_and_keep_the_earlier_file() {
    const QTemporaryDir folder;
    const QString path = folder.filePath("s.xml");
    QCOMPARE(settings_file::write(path, {{"A", "earlier"}}), QString());
    const FileSizeLimit limit(50);

    QCOMPARE(settings_file::write(path, {{"A", "later"}}), qt_error_string(EFBIG));
    QCOMPARE(settings_file::read(path).entries.value(0).text, QString("earlier"));
}

void TestFullDisk::log_drops_whole_lines_and_goes_on() {
    const QTemporaryDir folder;
    LogFile log(folder.filePath("A.log"));
    const auto write = [&log](const QString &text) { log.write(QtInfoMsg, QMessageLogContext(), text); };
    {
        const FileSizeLimit limit(1000);
        for (int i = 0; i < 50; ++i)
            write("<full>");
    }
    write("<room again>");

    QFile file(folder.filePath("A.log"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QStringList lines = QString::fromUtf8(file.readAll()).split('\n');
    const int taken = lines.filter(QRegularExpression("default .*<full>$")).size();
    QVERIFY2(taken > 0 && taken < 50, qPrintable(QString::number(taken)));
    QCOMPARE(lines.size(), taken + 3);  // the first line, and what comes after the last
    QVERIFY(lines.value(taken + 1).endsWith(" <room again>"));
}

OCELA_TEST(TestFullDisk)
#include "tst_full_disk_linux.moc"
