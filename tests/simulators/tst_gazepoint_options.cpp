#include "gazepoint/options.h"
#include "support/test_main.h"

#include <QFile>
#include <QRegularExpression>
#include <QTest>

using namespace sim::gazepoint;

class TestGazepointOptions : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void are_taken_from_the_command_line();
    void screens_data();
    void screens();
    void nonsense_is_refused_data();
    void nonsense_is_refused();
    void are_documented();
};

void TestGazepointOptions::are_taken_from_the_command_line() {
    const auto parsed = parseOptions({"simulator", "--port", "0", "--rate=150", "--seed", "18446744073709551615",
                                      "--older-server", "--fault", "split,nan", "--fault", "drop", "--fault-after",
                                      "0.5", "--lines", "a b.txt", "--once"});
    QVERIFY(std::holds_alternative<Options>(parsed));
    const auto options = std::get<Options>(parsed);
    QCOMPARE(options.server.port, quint16(0));
    QCOMPARE(options.server.rate, 150.0);
    QCOMPARE(options.subject.seed, ~std::uint64_t(0));
    QVERIFY(options.server.olderServer && options.server.once && !options.followMouse);
    QCOMPARE(options.server.faults.faults, (QVector<Fault>{Fault::Split, Fault::Nan, Fault::Drop}));
    QCOMPARE(options.server.faults.after, 0.5);
    QCOMPARE(options.linesFile, QString("a b.txt"));
    QCOMPARE(std::get<Options>(parseOptions({"simulator"})).server.port, quint16(4242));
}

void TestGazepointOptions::screens_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("screen");
    const auto row = [](const char *text, const char *screen) { QTest::newRow(text) << text << QByteArray(screen); };
    row("2560x1440", "0 0 2560 1440");
    row("1920x1080+100+50", "100 50 1920 1080");
    row("1920x1080-1920+0", "-1920 0 1920 1080");
    row("1920x1080+-1920+-5", "-1920 -5 1920 1080");
    row("0x0", "0 0 0 0");
    row("-5x-7", "0 0 -5 -7");
    row("99999999999999999999x1", "0 0 99999999999999999999 1");
    for (const char *text :
         {"", "1920", "1920x", "x1080", "1920x1080+1", "1920x1080+1+2+3", "axb", "1920X1080 ", "1.5x2"})
        row(text, "");
}

void TestGazepointOptions::screens() {
    QFETCH(QString, text);
    QFETCH(QByteArray, screen);
    const auto parsed = parseScreen(text);
    QCOMPARE(parsed ? parsed->x + ' ' + parsed->y + ' ' + parsed->width + ' ' + parsed->height : QByteArray(), screen);
}

void TestGazepointOptions::nonsense_is_refused_data() {
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("reason");
    const auto row = [](const QStringList &arguments, const char *reason) {
        QTest::newRow(qPrintable(arguments.join(' '))) << arguments << reason;
    };
    row({"--rate", "fast"}, "--rate takes a number from 1 to 5000, not \"fast\"");
    row({"--rate", "nan"}, "--rate");
    row({"--rate", "0"}, "--rate");
    row({"--port", "65536"}, "--port");
    row({"--port", "-1"}, "--port");
    row({"--screen", "big"}, "--screen");
    row({"--fault", "split,fire"}, "there is no fault \"fire\"");
    row({"--fault-after", "-1"}, "--fault-after");
    row({"--seed", "x"}, "--seed");
    row({"--colour"}, "colour");
    row({"--port"}, "port");
    row({"file"}, "unexpected argument \"file\"");
    row({"--record", "a", "--lines", "b"}, "exclude each other");
}

void TestGazepointOptions::nonsense_is_refused() {
    QFETCH(QStringList, arguments);
    QFETCH(QString, reason);
    const auto parsed = parseOptions(QStringList{"simulator"} + arguments);
    QVERIFY(std::holds_alternative<QString>(parsed));
    QVERIFY2(std::get<QString>(parsed).contains(reason), qPrintable(std::get<QString>(parsed)));
}

void TestGazepointOptions::are_documented() {
    QFile file(OCELA_SOURCE_DIR "/docs/devices.md");
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QString page = QString::fromUtf8(file.readAll());
    static const QRegularExpression option("^ +(?:-h, )?(--[a-z-]+)", QRegularExpression::MultilineOption);
    int options = 0;
    for (auto match = option.globalMatch(helpText()); match.hasNext(); ++options) {
        const QString name = match.next().captured(1);
        QVERIFY2(name == "--help" || page.contains('`' + name), qPrintable(name));
    }
    QVERIFY(options >= 12);
    for (const FaultDescription &fault : faultDescriptions())
        QVERIFY2(page.contains(QString("| `%1` |").arg(fault.name)), fault.name);

    // Each command line on the page is one that the program takes.
    static const QRegularExpression example("^gazepoint-simulator (--[^#\n]*)", QRegularExpression::MultilineOption);
    int examples = 0;
    for (auto match = example.globalMatch(page); match.hasNext(); ++examples) {
        const QString arguments = match.next().captured(1);
        const auto parsed = parseOptions(QStringList{"simulator"} + arguments.split(' ', Qt::SkipEmptyParts));
        QVERIFY2(std::holds_alternative<Options>(parsed), qPrintable(arguments));
    }
    QVERIFY(examples >= 4);
}

OCELA_TEST(TestGazepointOptions)
#include "tst_gazepoint_options.moc"
