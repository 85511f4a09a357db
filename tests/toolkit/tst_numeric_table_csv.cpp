#include "support/test_main.h"
#include "toolkit/csv_text.h"
#include "toolkit/numeric_table_csv.h"

#include <QDir>
#include <QFile>
#include <QLocale>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

namespace {

class Table : public NumericTableCSV {
public:
    Table(const QStringList &headers, std::initializer_list<std::initializer_list<NumericCell>> rows) {
        setHeaders(headers);
        for (const auto &row : rows)
            rows_.append(row);
    }
};

QByteArray contentOf(const QString &path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no such file");
}

void write(const QString &path, const QByteArray &content) {
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(content);
}

}  // namespace

class TestNumericTableCSV : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { folder_ = std::make_unique<QTemporaryDir>(); }

    void writes_the_same_bytes_in_every_locale();
    void quotes_headers_that_need_it();
    void keeps_a_file_that_stands_there();
    void failed_save_destroys_nothing_data();
    void failed_save_destroys_nothing();
    void loads_what_it_saved();
    void reads_csv_text_data();
    void reads_csv_text();
    void load_refuses_what_is_no_number();

private:
    [[nodiscard]] QString path(const QString &name) const { return folder_->filePath(name); }

    std::unique_ptr<QTemporaryDir> folder_;
};

void TestNumericTableCSV::writes_the_same_bytes_in_every_locale() {
    Table table({"A", "B", "C"}, {{1, 12.5F, -0.25}, {qint64(1700000000123), 12.3F, 1e-9}});
    QLocale::setDefault(QLocale(QLocale::Russian));
    const bool saved = table.save(path("t.csv"), true);
    QLocale::setDefault(QLocale::c());
    QVERIFY(saved);
    QCOMPARE(contentOf(path("t.csv")),
             QByteArray("A,B,C\r\n1,12.5,-0.25\r\n1700000000123,12.300000190734863,1e-09\r\n"));
}

void TestNumericTableCSV::quotes_headers_that_need_it() {
    Table table({"a,b", "say \"x\"", "Взгляд"}, {});
    QVERIFY(table.save(path("t.csv"), true));
    QCOMPARE(contentOf(path("t.csv")), QString("\"a,b\",\"say \"\"x\"\"\",Взгляд\r\n").toUtf8());
}

void TestNumericTableCSV::keeps_a_file_that_stands_there() {
    Table table({"A"}, {});
    write(path("a.b.csv"), "first");
    write(path("a.b_1.csv"), "earlier");
    QVERIFY(table.save(path("a.b.csv"), true));
    QVERIFY(table.save(path("a.b.csv"), true));
    QCOMPARE(contentOf(path("a.b_1.csv")), QByteArray("earlier"));
    QCOMPARE(contentOf(path("a.b_2.csv")), QByteArray("first"));
    QCOMPARE(contentOf(path("a.b_3.csv")), QByteArray("A\r\n"));
    QCOMPARE(contentOf(path("a.b.csv")), QByteArray("A\r\n"));
}

void TestNumericTableCSV::failed_save_destroys_nothing_data() {
    QTest::addColumn<QString>("name");
    QTest::newRow("folder that does not exist") << "missing/t.csv";
    QTest::newRow("name of a folder") << "folder";
}

void TestNumericTableCSV::failed_save_destroys_nothing() {
    QFETCH(QString, name);
    QVERIFY(QDir(folder_->path()).mkdir("folder"));
    write(path("folder/inside"), "kept");
    Table table({"A"}, {{1}});

    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^Cannot save .*: .+"));
    QVERIFY(!table.save(path(name), true));
    QCOMPARE(QDir(folder_->path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList{"folder"});
    QCOMPARE(contentOf(path("folder/inside")), QByteArray("kept"));
}

void TestNumericTableCSV::loads_what_it_saved() {
    Table saved({"A", "B"}, {{1, 0.1}, {-2, 1e300}});
    QVERIFY(saved.save(path("t.csv"), true));

    NumericTableCSV loaded;
    QVERIFY(loaded.load(path("t.csv")));
    QCOMPARE(loaded.headers(), saved.headers());
    QCOMPARE(loaded.currentFilePath(), path("t.csv"));
    QCOMPARE(int(loaded.rows().size()), 2);
    QCOMPARE(loaded.rows().at(0), (QVariantList{qint64(1), 0.1}));
    QCOMPARE(loaded.rows().at(1), (QVariantList{qint64(-2), 1e300}));
}

void TestNumericTableCSV::reads_csv_text_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<QList<QStringList>>("records");
    using Records = QList<QStringList>;
    QTest::newRow("no line end at the end") << "a,b" << Records{{"a", "b"}};
    QTest::newRow("all three line ends") << "a\r\nb\nc\rd" << Records{{"a"}, {"b"}, {"c"}, {"d"}};
    QTest::newRow("empty fields stay") << ",a,\r\n" << Records{{"", "a", ""}};
    QTest::newRow("blank lines go") << "a\r\n\r\n\r\nb" << Records{{"a"}, {"b"}};
    QTest::newRow("quoted separator, quote and line end") << "\"a,\"\"b\r\n\",c" << Records{{"a,\"b\r\n", "c"}};
}

void TestNumericTableCSV::reads_csv_text() {
    QFETCH(QString, text);
    QFETCH(QList<QStringList>, records);
    QCOMPARE(csv::parse(text, ','), records);
}

void TestNumericTableCSV::load_refuses_what_is_no_number() {
    write(path("t.csv"), "A,B\r\n1,2\r\n3,left\r\n");
    NumericTableCSV table;
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("Cannot load .*t\\.csv: row 2, column 2 is no number"));
    QVERIFY(!table.load(path("t.csv")));
    QCOMPARE(int(table.rows().size()), 0);
}

OCELA_TEST(TestNumericTableCSV)
#include "tst_numeric_table_csv.moc"
