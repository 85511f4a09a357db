#include "api/v1/byte_range.h"
#include "api/v1/record_target.h"
#include "support/test_main.h"

#include <QTest>

class TestRecordTarget : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void file_names_data();
    void file_names();
    void byte_ranges_data();
    void byte_ranges();
};

void TestRecordTarget::file_names_data() {
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("isValid");
    const auto row = [](const QString &name, bool isValid) {
        QTest::addRow("%s", qPrintable(name)) << name << isValid;
    };
    for (const char *name : {"P01", "P 01.csv", ".hidden", "a.b", "console", "com10", "lpt", "nul_1", "Пробник",
                             "participant & co", "~", "a%2fb"})
        row(QString::fromUtf8(name), true);
    for (const char *name : {"",    ".",   "..",      "a/b",      "a\\b", "C:a",   "a:b",      "a*",    "a?",
                             "<a",  "a>",  "a|b",     "a\"",      "a\n",  "a\x7f", " a",       "a ",    "a.",
                             "con", "CON", "nul.csv", "Com1.a.b", "lpt9", "com¹",  "aux .csv", "conin$"})
        row(QString::fromUtf8(name), false);
    row(QString("a") + QChar(0), false);
    row(QString(200, 'x'), true);
    row(QString(201, 'x'), false);
    row(QString(101, QChar(0x43f)), false);  // of two bytes each
}

void TestRecordTarget::file_names() {
    QFETCH(const QString, name);
    QTEST(api_v1::isFileName(name), "isValid");
}

void TestRecordTarget::byte_ranges_data() {
    QTest::addColumn<QByteArray>("header");
    QTest::addColumn<QByteArray>("expected");  // first+size, or "ignored", for a file of 100 bytes
    QTest::newRow("a part") << QByteArray("bytes=10-19") << QByteArray("10+10");
    QTest::newRow("one byte") << QByteArray("bytes=0-0") << QByteArray("0+1");
    QTest::newRow("from a byte on") << QByteArray("bytes=90-") << QByteArray("90+10");
    QTest::newRow("beyond the end") << QByteArray("bytes=90-1000") << QByteArray("90+10");
    QTest::newRow("the end") << QByteArray("bytes=-7") << QByteArray("93+7");
    QTest::newRow("more than the file") << QByteArray("bytes=-1000") << QByteArray("0+100");
    QTest::newRow("no bytes") << QByteArray("bytes=-0") << QByteArray("100+0");
    QTest::newRow("after the file") << QByteArray("bytes=100-") << QByteArray("100+0");
    for (const char *header : {"", "bytes", "bytes=", "bytes=-", "bytes=5", "bytes=9-5", "bytes=a-b", "bytes=1-2,4-5",
                               "lines=1-2", "bytes=99999999999999999999-", "bytes=--5", "bytes=+1-2"})
        QTest::addRow("%s", header) << QByteArray(header) << QByteArray("ignored");
}

void TestRecordTarget::byte_ranges() {
    QFETCH(const QByteArray, header);
    const std::optional<api_v1::ByteRange> range = api_v1::parseByteRange(header, 100);
    const QByteArray text =
        range ? QByteArray::number(range->first) + '+' + QByteArray::number(range->sizeBytes) : QByteArray("ignored");
    QTEST(text, "expected");
}

OCELA_TEST(TestRecordTarget)
#include "tst_record_target.moc"
