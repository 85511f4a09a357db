#include "support/file_content.h"
#include "support/test_main.h"
#include "toolkit/table/csv_text.h"
#include "toolkit/table/numeric_table_csv.h"

#include <QDir>
#include <QLocale>
#include <QRegularExpression>
#include <QTemporaryDir>

namespace {

class Table : public NumericTableCSV {
public:
    Table(const QStringList &headers, std::initializer_list<std::initializer_list<NumericCell>> rows) {
        setHeaders(headers);
        for (const auto &row : rows)
            rows_.append(row);
    }
    void append(int cell) { rows_.append({cell}); }
};

}  // namespace

class TestNumericTableCSV : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { folder_ = std::make_unique<QTemporaryDir>(); }

    void writes_the_same_bytes_in_every_locale();
    void writes_each_row_of_a_large_table_once();
    void renames_an_existing_file();
    void failed_save_changes_no_file();
    void loads_a_saved_table();
    void reads_csv_text_data();
    void reads_csv_text();
    void load_refuses_a_cell_that_is_not_a_number();

private:
    [[nodiscard]] QString path(const QString &name) const { return folder_->filePath(name); }

    std::unique_ptr<QTemporaryDir> folder_;
};

void TestNumericTableCSV::writes_the_same_bytes_in_every_locale() {
    Table table({"a,b", "say \"x\"", "Взгляд"}, {{1, 12.5F, -0.25}, {qint64(1700000000123), 12.3F, 1e-9}});
    QLocale::setDefault(QLocale(QLocale::Russian));
    const bool saved = table.save(path("t.csv"), true);
    QLocale::setDefault(QLocale::c());
    QVERIFY(saved);
    QCOMPARE(
        readFile(path("t.csv")),
        QByteArray("\"a,b\",\"say \"\"x\"\"\",Взгляд\r\n1,12.5,-0.25\r\n1700000000123,12.300000190734863,1e-09\r\n"));
}

void TestNumericTableCSV::writes_each_row_of_a_large_table_once() {
    Table table({"A"}, {});
    QByteArray expected("A\r\n");
    for (int row = 0; row < 100000; ++row) {
        table.append(row);
        expected += QByteArray::number(row) + "\r\n";
    }
    QVERIFY(table.save(path("t.csv"), false));
    QVERIFY(readFile(path("t.csv")) == expected);
}

void TestNumericTableCSV::renames_an_existing_file() {
    Table table({"A"}, {});
    writeFile(path("a.b.csv"), "first");
    writeFile(path("a.b_1.csv"), "earlier");
    QVERIFY(table.save(path("a.b.csv"), true));
    QVERIFY(table.save(path("a.b.csv"), true));
    QCOMPARE(readFile(path("a.b_1.csv")), QByteArray("earlier"));
    QCOMPARE(readFile(path("a.b_2.csv")), QByteArray("first"));
    QCOMPARE(readFile(path("a.b_3.csv")), QByteArray("A\r\n"));
    QCOMPARE(readFile(path("a.b.csv")), QByteArray("A\r\n"));
    QVERIFY(table.save(path("a.b_1.csv"), false));
    QCOMPARE(readFile(path("a.b_1.csv")), QByteArray("A\r\n"));
}

void TestNumericTableCSV::failed_save_changes_no_file() {
    QVERIFY(QDir(folder_->path()).mkdir("folder"));
    writeFile(path("folder/inside"), "kept");
    Table table({"A"}, {{1}});

    for (const char *name : {"missing/t.csv", "folder"}) {
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^Cannot save .*: .+"));
        QVERIFY2(!table.save(path(name), true), name);
    }
    QCOMPARE(QDir(folder_->path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList{"folder"});
    QCOMPARE(readFile(path("folder/inside")), QByteArray("kept"));
}

void TestNumericTableCSV::loads_a_saved_table() {
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
    dataColumns<QString, QList<QStringList>>("text", "records");
    using Records = QList<QStringList>;
    QTest::newRow("last line without a line ending") << "a,b" << Records{{"a", "b"}};
    QTest::newRow("all three line endings") << "a\r\nb\nc\rd" << Records{{"a"}, {"b"}, {"c"}, {"d"}};
    QTest::newRow("empty fields are kept") << ",a,\r\n" << Records{{"", "a", ""}};
    QTest::newRow("blank lines are skipped") << "a\r\n\r\n\r\nb" << Records{{"a"}, {"b"}};
    QTest::newRow("quoted separator, quote and line ending") << "\"a,\"\"b\r\n\",c" << Records{{"a,\"b\r\n", "c"}};
}

void TestNumericTableCSV::reads_csv_text() {
    QFETCH(QString, text);
    QFETCH(QList<QStringList>, records);
    QList<QStringList> parsed;
    for (const csv::Record &record : csv::parse(text, ','))
        parsed << record.fields;
    QCOMPARE(parsed, records);
}

void TestNumericTableCSV::load_refuses_a_cell_that_is_not_a_number() {
    writeFile(path("t.csv"), "A,\"the\r\nB\"\r\n\r\n1,2\r\n3,left\r\n");
    NumericTableCSV table;
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("Cannot load .*t\\.csv: line 5, column 2 is not a number"));
    QVERIFY(!table.load(path("t.csv")));
    QCOMPARE(int(table.rows().size()), 0);
}

OCELA_TEST(TestNumericTableCSV)
#include "tst_numeric_table_csv.moc"
