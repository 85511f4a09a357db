#include "support/file_content.h"
#include "support/file_size_limit.h"
#include "support/test_main.h"
#include "toolkit/base/log_file.h"
#include "toolkit/settings/settings_file.h"
#include "toolkit/table/numeric_table_csv.h"

#include <QDir>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <cerrno>

namespace {

class Table : public NumericTableCSV {
public:
    explicit Table(int rows) {
        setHeaders({"A"});
        for (int row = 0; row < rows; ++row)
            rows_.append({row});
    }
};

}  // namespace

class TestFullDisk : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void failed_table_save_reports_the_reason_and_leaves_no_file();
    void failed_settings_save_reports_the_reason_and_keeps_the_earlier_file();
    void log_drops_complete_lines_and_continues();
};

void TestFullDisk::failed_table_save_reports_the_reason_and_leaves_no_file() {
    const QTemporaryDir folder;
    const FileSizeLimit limit(1000);
    for (const int rows : {400, 100000}) {
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^Cannot save .*: " + qt_error_string(EFBIG) + '$'));
        QVERIFY(!Table(rows).save(folder.filePath("t.csv"), true));
    }
    QCOMPARE(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden), QStringList());
}

void TestFullDisk::failed_settings_save_reports_the_reason_and_keeps_the_earlier_file() {
    const QTemporaryDir folder;
    const QString path = folder.filePath("s.xml");
    QCOMPARE(settings_file::write(path, {{"A", "earlier"}}), QString());
    const FileSizeLimit limit(50);

    QCOMPARE(settings_file::write(path, {{"A", "later"}}), qt_error_string(EFBIG));
    QCOMPARE(settings_file::read(path).entries.value(0).text, QString("earlier"));
}

void TestFullDisk::log_drops_complete_lines_and_continues() {
    const QTemporaryDir folder;
    LogFile log(folder.filePath("A.log"));
    const auto write = [&log](const QString &text) { log.write(QtInfoMsg, QMessageLogContext(), text); };
    {
        const FileSizeLimit limit(1000);
        for (int i = 0; i < 50; ++i)
            write("<full>");
    }
    write("<written again>");

    const QStringList lines = QString::fromUtf8(readFile(folder.filePath("A.log"))).split('\n');
    const int writtenCount = lines.filter(QRegularExpression("default .*<full>$")).size();
    QVERIFY2(writtenCount > 0 && writtenCount < 50, qPrintable(QString::number(writtenCount)));
    // Also the first line, "<written again>" and the empty text after the last line ending.
    QCOMPARE(lines.size(), writtenCount + 3);
    const QRegularExpression wholeLine(R"(^[-\d]{10}T[:.\d]{12}Z info default \[\d+\] <written again>$)");
    QVERIFY2(wholeLine.match(lines.value(writtenCount + 1)).hasMatch(), qPrintable(lines.value(writtenCount + 1)));
}

OCELA_TEST(TestFullDisk)
#include "tst_full_disk_linux.moc"
