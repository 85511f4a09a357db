#include "gazepoint/command_parser.h"
#include "gazepoint/device.h"
#include "support/test_main.h"

#include <QTest>

using namespace sim::gazepoint;

class TestGazepointProtocol : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void finds_commands_data();
    void finds_commands();
    void answers_data();
    void answers();
};

namespace {

QByteArray describe(const Command &command) {
    QByteArray text = command.verb + ' ' + command.id;
    for (const Attribute &attribute : command.attributes)
        text += ' ' + attribute.name + '=' + attribute.value;
    return text;
}

}  // namespace

void TestGazepointProtocol::finds_commands_data() {
    using List = QByteArrayList;
    QTest::addColumn<QByteArrayList>("segments");
    QTest::addColumn<QByteArrayList>("commands");
    const List on{"SET A STATE=1"};
    const List two{"SET A STATE=1", "GET B"};
    QTest::newRow("as the manual has it") << List{"<SET ID=\"A\" STATE=\"1\" />\r\n"} << on;
    QTest::newRow("spaces doubled and left out") << List{"<SET  ID=\"A\"STATE=\"1\"/> \n"} << on;
    QTest::newRow("no slash") << List{"<SET ID=\"A\" STATE=\"1\" >\r\n"} << on;
    QTest::newRow("no line end at all") << List{"<SET ID=\"A\" STATE=\"1\" /><GET ID=\"B\" />"} << two;
    QTest::newRow("attributes in another order") << List{"<SET STATE=\"1\" ID=\"A\" />"} << on;
    QTest::newRow("one over several segments") << List{"<SE", "T ID=\"A\" STA", "TE=\"1", "\" /", ">\r\n"} << on;
    QTest::newRow("tag end inside quotes") << List{"<SET ID=\"A\" VALUE=\"a > b\" />"} << List{"SET A VALUE=a > b"};
    QTest::newRow("garbage around") << List{"\xff\x01 /> x <SET ID=\"A\" STATE=\"1\" /> y \r\n"} << on;
    QTest::newRow("a broken one does not harm the next")
        << List{"<SET ID=\"A STATE=\r\n<SET <GET ID=\"B\" />\r\n"} << List{"GET B"};
    QTest::newRow("one of ten megabytes is skipped")
        << List{"<SET ID=\"" + QByteArray(10 * 1000 * 1000, 'x') + "\" /><GET ID=\"B\" />"} << List{"GET B"};
}

void TestGazepointProtocol::finds_commands() {
    QFETCH(QByteArrayList, segments);
    QFETCH(QByteArrayList, commands);
    CommandParser parser;
    QByteArrayList found;
    for (const QByteArray &segment : segments) {
        parser.feed(segment);
        while (const auto command = parser.next())
            found << describe(*command);
    }
    QCOMPARE(found, commands);
}

void TestGazepointProtocol::answers_data() {
    QTest::addColumn<QByteArrayList>("commands");
    QTest::addColumn<QByteArray>("answer");  // to the last of them
    const auto row = [](const char *name, const QByteArrayList &commands, const QByteArray &answer) {
        QTest::newRow(name) << commands << answer;
    };

    row("a nonsense state changes nothing",
        {"<SET ID=\"ENABLE_SEND_DATA\" STATE=\"1\" />", "<SET ID=\"ENABLE_SEND_DATA\" STATE=\"off\" />"},
        "<ACK ID=\"ENABLE_SEND_DATA\" STATE=\"1\" />");
    row("an unknown switch", {"<SET ID=\"ENABLE_SEND_SMELL\" STATE=\"1\" />"}, "<NACK ID=\"ENABLE_SEND_SMELL\" />");
    row("an unknown verb", {"<PUT ID=\"USER_DATA\" />"}, "<NACK ID=\"USER_DATA\" />");
    row("the screen moved", {"<SET ID=\"SCREEN_SIZE\" X=\"-1920\" />"},
        "<ACK ID=\"SCREEN_SIZE\" X=\"-1920\" Y=\"0\" WIDTH=\"1920\" HEIGHT=\"1080\" />");
    row("a point that is none",
        {"<SET ID=\"CALIBRATE_CLEAR\" />", "<SET ID=\"CALIBRATE_ADDPOINT\" X=\"nan\" Y=\"2\" />"},
        "<ACK ID=\"CALIBRATE_ADDPOINT\" PTS=\"0\" />");
    row("points as at the start", {"<SET ID=\"CALIBRATE_CLEAR\" />", "<SET ID=\"CALIBRATE_RESET\" />"},
        "<ACK ID=\"CALIBRATE_RESET\" PTS=\"5\" />");
    row("no calibration without points",
        {"<SET ID=\"CALIBRATE_CLEAR\" />", "<SET ID=\"CALIBRATE_START\" STATE=\"1\" />"},
        "<ACK ID=\"CALIBRATE_START\" STATE=\"0\" />");
    row("a delay that is none", {"<SET ID=\"CALIBRATE_DELAY\" VALUE=\"-1\" />"},
        "<ACK ID=\"CALIBRATE_DELAY\" VALUE=\"0.5\" />");
}

void TestGazepointProtocol::answers() {
    QFETCH(QByteArrayList, commands);
    QFETCH(QByteArray, answer);
    sim::Subject subject;
    Device device(DeviceOptions(), &subject);
    Switches switches;
    CommandParser parser;
    QByteArray last;
    for (const QByteArray &line : commands) {
        parser.feed(line);
        last = device.execute(*parser.next(), &switches);
    }
    QCOMPARE(last, answer);
}

OCELA_TEST(TestGazepointProtocol)
#include "tst_gazepoint_protocol.moc"
