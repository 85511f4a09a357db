#include "gazepoint/options.h"
#include "support/test_main.h"

#include <QFile>
#include <QRegularExpression>
#include <QTest>

using namespace sim::gazepoint;

namespace {

auto parse(const QStringList &arguments) {
    return parseOptions(QStringList{"simulator"} + arguments);
}

}  // namespace

class TestGazepointOptions : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void are_taken_from_the_command_line();
    void nonsense_is_refused_data();
    void nonsense_is_refused();
    void are_documented();
};

void TestGazepointOptions::are_taken_from_the_command_line() {
    const auto parsed = parse({"--port", "0", "--rate=150", "--seed", "18446744073709551615", "--older-server",
                               "--fault", "split,nan", "--fault", "drop", "--fault-after", "0.5", "--lines", "a b.txt",
                               "--screen", "1920x1080-1920+0", "--once"});
    QVERIFY(std::holds_alternative<Options>(parsed));
    const auto options = std::get<Options>(parsed);
    QCOMPARE(options.server.port, quint16(0));
    QCOMPARE(options.server.rate, 150.0);
    QCOMPARE(options.subject.seed, ~std::uint64_t(0));
    QVERIFY(options.server.olderServer && options.server.once && !options.followMouse);
    QCOMPARE(options.server.faults.faults, (QVector<Fault>{Fault::Split, Fault::Nan, Fault::Drop}));
    QCOMPARE(options.server.faults.after, 0.5);
    QCOMPARE(options.linesFile, QString("a b.txt"));
    QCOMPARE(options.server.screen.x, QByteArray("-1920"));
    QCOMPARE(options.server.screen.height, QByteArray("1080"));
}

void TestGazepointOptions::nonsense_is_refused_data() {
    QTest::addColumn<QString>("arguments");
    QTest::addColumn<QString>("reason");
    const auto row = [](const char *arguments, const char *reason) { QTest::newRow(arguments) << arguments << reason; };
    row("--rate fast", "--rate takes a number from 1 to 5000, not \"fast\"");
    row("--rate nan", "--rate");
    row("--port 65536", "--port");
    row("--screen 1920x1080+1", "--screen");
    row("--fault split,fire", "there is no fault \"fire\"");
    row("--seed x", "--seed");
    row("--colour", "colour");
    row("file", "unexpected argument \"file\"");
    row("--record a --lines b", "exclude each other");
}

void TestGazepointOptions::nonsense_is_refused() {
    QFETCH(QString, arguments);
    QFETCH(QString, reason);
    const auto parsed = parse(arguments.split(' '));
    QVERIFY(std::holds_alternative<QString>(parsed));
    QVERIFY2(std::get<QString>(parsed).contains(reason), qPrintable(std::get<QString>(parsed)));
}

void TestGazepointOptions::are_documented() {
    QFile file(OCELA_SOURCE_DIR "/docs/devices.md");
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QString page = QString::fromUtf8(file.readAll());
    static const QRegularExpression option("^ +(--[a-z-]+)", QRegularExpression::MultilineOption);
    QVERIFY(helpText().contains(option));
    for (auto match = option.globalMatch(helpText()); match.hasNext();) {
        const QString name = match.next().captured(1);
        QVERIFY2(page.contains('`' + name), qPrintable(name));
    }
    // Each command line on the page is one that the program takes.
    static const QRegularExpression example("^gazepoint-simulator (--[^#\n]*)", QRegularExpression::MultilineOption);
    QVERIFY(page.contains(example));
    for (auto match = example.globalMatch(page); match.hasNext();) {
        const QString arguments = match.next().captured(1);
        QVERIFY2(std::holds_alternative<Options>(parse(arguments.split(' ', Qt::SkipEmptyParts))),
                 qPrintable(arguments));
    }
}

OCELA_TEST(TestGazepointOptions)
#include "tst_gazepoint_options.moc"
