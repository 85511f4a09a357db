#include "foreign_library.h"
#include "support/test_main.h"
#include "toolkit/platform/system_library.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QScopeGuard>

using Reason = VendorLibrary::Reason;

Q_DECLARE_METATYPE(Reason)

namespace {

Q_LOGGING_CATEGORY(lcSample, "sample")

using Sum = int (*)(int, int);

}  // namespace

/// Tests libraries in the folder `OCELA_TEST_LIBRARIES`, which is in the search path.
class TestVendorLibrary : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void calls_a_library_until_it_is_unloaded();
    void names_the_first_missing_entry_point();
    void reports_why_a_library_cannot_be_loaded_data();
    void reports_why_a_library_cannot_be_loaded();
};

void TestVendorLibrary::calls_a_library_until_it_is_unloaded() {
    QStringList results;
    VendorLibrary library("ocela_sample", {"sampleSum"},
                          [&] { results << QString::number(library.function<Sum>(0)(1, 2)); });
    QVERIFY(!library.function<Sum>(0));
    QVERIFY(library.load());
    QVERIFY(!library.error());
    QCOMPARE(library.function<Sum>(0)(20, 22), 42);
    QVERIFY(library.load());
    QCOMPARE(results, QStringList("3"));
    library.unload();
    QCOMPARE(results, QStringList({"3", "3"}));
    QVERIFY(!library.function<Sum>(0));
}

void TestVendorLibrary::names_the_first_missing_entry_point() {
    int sum = 0;
    VendorLibrary library("ocela_sample", {"sampleSum", "sampleDifference", "sampleProduct"},
                          [&] { sum = library.function<Sum>(0)(1, 2); });
    QVERIFY(!library.load());
    QCOMPARE(sum, 3);
    QVERIFY(!library.function<Sum>(0));
    QCOMPARE(library.error()->reason, Reason::MissingEntryPoint);
    QCOMPARE(library.error()->missing, QString("sampleDifference"));
    QVERIFY2(library.error()->file.contains("ocela_sample"), qPrintable(library.error()->file));
}

void TestVendorLibrary::reports_why_a_library_cannot_be_loaded_data() {
    dataColumns<QString, QByteArray, Reason, QString>("name", "content", "reason", "text");
    const auto row = [](const char *title, const QString &name, const QByteArray &content, Reason reason,
                        const char *text) { QTest::newRow(title) << name << content << reason << text; };
    row("file does not exist", "ocela_missing", {}, Reason::NotFound,
        "library (lib)?ocela_missing\\.(so|dll) not found");
    row("path does not exist", QDir::rootPath() + "missing/ocela", {}, Reason::NotFound, "library .*ocela not found");
    row("empty file", "ocela_empty", "", Reason::NotALibrary, "ocela_empty.* is not a library");
    row("short text file", "ocela_note", "note", Reason::NotALibrary, "ocela_note.* is not a library");
    row("long text file", "ocela_text", QByteArray(4096, 'x'), Reason::NotALibrary, "ocela_text.* is not a library");
    row("missing dependency", "ocela_dependent", {}, Reason::MissingDependency,
        "ocela_dependent.* needs .*, which cannot");
    for (const ForeignLibrary &library : foreignLibraries())
        row(library.architecture, "ocela_foreign", library.content, Reason::WrongArchitecture,
            "ocela_foreign.* another");
}

void TestVendorLibrary::reports_why_a_library_cannot_be_loaded() {
    QFETCH(QString, name);
    QFETCH(QByteArray, content);
    QFETCH(Reason, reason);
    QFETCH(QString, text);
    QFile file(QDir(OCELA_TEST_LIBRARIES).filePath(system_library::fileNamesOf(name, {}).first()));
    const auto remover = qScopeGuard([&] { content.isNull() || file.remove(); });
    if (!content.isNull())
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
    file.close();

    VendorLibrary library(name, {"sampleSum"});
    QVERIFY(!library.load());
    QVERIFY(!library.function<Sum>(0));
    QCOMPARE(library.error()->reason, reason);
    QTest::ignoreMessage(reason == Reason::NotFound ? QtInfoMsg : QtWarningMsg,
                         QRegularExpression("^No samples: .*" + text));
    library.error()->log(lcSample(), "No samples");
}

OCELA_TEST(TestVendorLibrary)
#include "tst_vendor_library.moc"
