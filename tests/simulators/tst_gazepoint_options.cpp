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
    void nonsense_is_refused();
    void are_documented();
};

void TestGazepointOptions::are_taken_from_the_command_line() {
    const auto parsed = parse({"--rate=150", "--seed", "18446744073709551615", "--older-server", "--fault", "split,nan",
                               "--fault", "drop", "--screen", "1920x1080-1920+0"});
    QVERIFY(std::holds_alternative<Options>(parsed));
    const auto options = std::get<Options>(parsed);
    QCOMPARE(options.subject.seed, ~std::uint64_t(0));
    QVERIFY(options.server.rate == 150 && options.server.olderServer && !options.followMouse);
    QCOMPARE(options.server.faults.faults, (QVector<Fault>{Fault::Split, Fault::Nan, Fault::Drop}));
    QCOMPARE(options.server.screen.x, QByteArray("-1920"));
}

void TestGazepointOptions::nonsense_is_refused() {
    for (const char *arguments : {"--rate fast", "--port 65536", "--fault split,fire", "--record a --lines b"}) {
        const auto parsed = parse(QString(arguments).split(' '));
        QVERIFY2(std::holds_alternative<QString>(parsed), arguments);
    }
    QVERIFY(std::get<QString>(parse({"--rate", "fast"})).contains("a number from 1 to 5000, not \"fast\""));
}

/// Each command line on the page of the devices is one that the program takes.
void TestGazepointOptions::are_documented() {
    QFile file(OCELA_SOURCE_DIR "/docs/devices.md");
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QString page = QString::fromUtf8(file.readAll());
    static const QRegularExpression example("^gazepoint-simulator (--[^#\n]*)", QRegularExpression::MultilineOption);
    QVERIFY(page.contains(example));
    for (auto match = example.globalMatch(page); match.hasNext();) {
        const QString arguments = match.next().captured(1);
        QVERIFY(std::holds_alternative<Options>(parse(arguments.split(' ', Qt::SkipEmptyParts))));
    }
}

OCELA_TEST(TestGazepointOptions)
#include "tst_gazepoint_options.moc"
