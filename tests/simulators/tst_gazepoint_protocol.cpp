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
    void keeps_no_more_than_one_command();
    void answers_data();
    void answers();
    void settings_are_shared_and_switches_are_not();
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
    QTest::newRow("no space before the end") << List{"<SET ID=\"A\" STATE=\"1\"/>\r\n"} << on;
    QTest::newRow("double spaces") << List{"<SET  ID=\"A\"   STATE=\"1\"  />\r\n"} << on;
    QTest::newRow("space before the line end") << List{"<SET ID=\"A\" STATE=\"1\" /> \r\n"} << on;
    QTest::newRow("bare line feed") << List{"<SET ID=\"A\" STATE=\"1\" />\n"} << on;
    QTest::newRow("no line end at all") << List{"<SET ID=\"A\" STATE=\"1\" /><GET ID=\"B\" />"} << two;
    QTest::newRow("no space between attributes") << List{"<SET ID=\"A\"STATE=\"1\"/>\r\n"} << on;
    QTest::newRow("attributes in another order") << List{"<SET STATE=\"1\" ID=\"A\" />"} << on;
    QTest::newRow("no slash") << List{"<SET ID=\"A\" STATE=\"1\" >\r\n"} << on;
    QTest::newRow("several in one segment") << List{"<SET ID=\"A\" STATE=\"1\" />\r\n<GET ID=\"B\" />\r\n"} << two;
    QTest::newRow("one over several segments") << List{"<SE", "T ID=\"A\" STA", "TE=\"1", "\" /", ">\r\n"} << on;
    QTest::newRow("byte by byte") << QByteArray("< S E T # I D = \" A \" # S T A T E = \" 1 \" # / >")
                                         .replace(' ', "")
                                         .replace("#", " ")
                                         .split('\0')
                                  << on;
    QTest::newRow("tag end inside quotes") << List{"<SET ID=\"A\" VALUE=\"a > b\" />"} << List{"SET A VALUE=a > b"};
    QTest::newRow("garbage around") << List{"\xff\x01 /> x <SET ID=\"A\" STATE=\"1\" /> y \r\n"} << on;
    QTest::newRow("a broken one does not harm the next")
        << List{"<SET ID=\"A STATE=\r\n<SET <GET ID=\"B\" />\r\n"} << List{"GET B"};
    QTest::newRow("without an ID") << List{"<SET />"} << List{"SET "};
    QTest::newRow("empty lines") << List{"\r\n\r\n"} << List{};
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

void TestGazepointProtocol::keeps_no_more_than_one_command() {
    CommandParser parser;
    parser.feed("<SET ID=\"" + QByteArray(10 * 1000 * 1000, 'x') + "\" /><GET ID=\"B\" />");
    const auto command = parser.next();
    QVERIFY(command);
    QCOMPARE(describe(*command), QByteArray("GET B"));
    QVERIFY(!parser.next());
}

void TestGazepointProtocol::answers_data() {
    QTest::addColumn<QByteArrayList>("commands");
    QTest::addColumn<QByteArray>("answer");  // to the last of them
    const auto row = [](const char *name, const QByteArrayList &commands, const QByteArray &answer) {
        QTest::newRow(name) << commands << answer;
    };
    const auto get = [](const QByteArray &id) { return "<GET ID=\"" + id + "\" />"; };

    row("a switch", {"<SET ID=\"ENABLE_SEND_POG_FIX\" STATE=\"1\" />"},
        "<ACK ID=\"ENABLE_SEND_POG_FIX\" STATE=\"1\" />");
    row("asking for a switch", {"<SET ID=\"ENABLE_SEND_BLINK\" STATE=\"1\" />", get("ENABLE_SEND_BLINK")},
        "<ACK ID=\"ENABLE_SEND_BLINK\" STATE=\"1\" />");
    row("a switch off again",
        {"<SET ID=\"ENABLE_SEND_DATA\" STATE=\"1\" />", "<SET ID=\"ENABLE_SEND_DATA\" STATE=\"0\" />"},
        "<ACK ID=\"ENABLE_SEND_DATA\" STATE=\"0\" />");
    row("a nonsense state changes nothing",
        {"<SET ID=\"ENABLE_SEND_DATA\" STATE=\"1\" />", "<SET ID=\"ENABLE_SEND_DATA\" STATE=\"off\" />"},
        "<ACK ID=\"ENABLE_SEND_DATA\" STATE=\"1\" />");
    row("an unknown switch", {"<SET ID=\"ENABLE_SEND_SMELL\" STATE=\"1\" />"}, "<NACK ID=\"ENABLE_SEND_SMELL\" />");
    row("an unknown name", {get("WEATHER")}, "<NACK ID=\"WEATHER\" />");
    row("an unknown verb", {"<PUT ID=\"USER_DATA\" />"}, "<NACK ID=\"USER_DATA\" />");
    row("the screen", {get("SCREEN_SIZE")},
        "<ACK ID=\"SCREEN_SIZE\" X=\"0\" Y=\"0\" WIDTH=\"1920\" HEIGHT=\"1080\" />");
    row("the screen moved", {"<SET ID=\"SCREEN_SIZE\" X=\"-1920\" />"},
        "<ACK ID=\"SCREEN_SIZE\" X=\"-1920\" Y=\"0\" WIDTH=\"1920\" HEIGHT=\"1080\" />");
    row("the camera", {get("CAMERA_SIZE")}, "<ACK ID=\"CAMERA_SIZE\" WIDTH=\"752\" HEIGHT=\"480\" />");
    row("the product", {get("PRODUCT_ID")}, "<ACK ID=\"PRODUCT_ID\" VALUE=\"GP3\" BUS=\"USB2\" RATE=\"60\" />");
    row("a value that cannot be set", {"<SET ID=\"SERIAL_ID\" VALUE=\"1\" />"},
        "<ACK ID=\"SERIAL_ID\" VALUE=\"123456789\" />");
    row("the clock", {get("TIME_TICK_FREQUENCY")}, "<ACK ID=\"TIME_TICK_FREQUENCY\" FREQ=\"10000000\" />");
    row("a marker", {"<SET ID=\"USER_DATA\" VALUE=\"START=1\" />"}, "<ACK ID=\"USER_DATA\" VALUE=\"START=1\" />");
    row("the calibration's window", {"<SET ID=\"CALIBRATE_SHOW\" STATE=\"1\" />", get("CALIBRATE_SHOW")},
        "<ACK ID=\"CALIBRATE_SHOW\" STATE=\"1\" />");
    row("the default points", {get("CALIBRATE_ADDPOINT")},
        "<ACK ID=\"CALIBRATE_ADDPOINT\" PTS=\"5\" X1=\"0.50000\" Y1=\"0.50000\" X2=\"0.85000\" "
        "Y2=\"0.15000\" "
        "X3=\"0.85000\" Y3=\"0.85000\" X4=\"0.15000\" Y4=\"0.85000\" X5=\"0.15000\" Y5=\"0.15000\" />");
    row("a point of one's own",
        {"<SET ID=\"CALIBRATE_CLEAR\" />", "<SET ID=\"CALIBRATE_ADDPOINT\" X=\"0.5\" Y=\"0.1\" />"},
        "<ACK ID=\"CALIBRATE_ADDPOINT\" PTS=\"1\" X1=\"0.50000\" Y1=\"0.10000\" />");
    row("a point that is none",
        {"<SET ID=\"CALIBRATE_CLEAR\" />", "<SET ID=\"CALIBRATE_ADDPOINT\" X=\"nan\" Y=\"2\" />"},
        "<ACK ID=\"CALIBRATE_ADDPOINT\" PTS=\"0\" />");
    row("no points", {"<SET ID=\"CALIBRATE_CLEAR\" />"}, "<ACK ID=\"CALIBRATE_CLEAR\" PTS=\"0\" />");
    row("asking does not clear", {get("CALIBRATE_CLEAR")}, "<ACK ID=\"CALIBRATE_CLEAR\" PTS=\"5\" />");
    row("points as at the start", {"<SET ID=\"CALIBRATE_CLEAR\" />", "<SET ID=\"CALIBRATE_RESET\" />"},
        "<ACK ID=\"CALIBRATE_RESET\" PTS=\"5\" />");
    row("no calibration without points",
        {"<SET ID=\"CALIBRATE_CLEAR\" />", "<SET ID=\"CALIBRATE_START\" STATE=\"1\" />"},
        "<ACK ID=\"CALIBRATE_START\" STATE=\"0\" />");
    row("the default timeout", {get("CALIBRATE_TIMEOUT")}, "<ACK ID=\"CALIBRATE_TIMEOUT\" VALUE=\"1.25\" />");
    row("another delay", {"<SET ID=\"CALIBRATE_DELAY\" VALUE=\"1.0\" />"},
        "<ACK ID=\"CALIBRATE_DELAY\" VALUE=\"1.0\" />");
    row("a delay that is none", {"<SET ID=\"CALIBRATE_DELAY\" VALUE=\"-1\" />"},
        "<ACK ID=\"CALIBRATE_DELAY\" VALUE=\"0.5\" />");
    row("no result yet", {get("CALIBRATE_RESULT_SUMMARY")},
        "<ACK ID=\"CALIBRATE_RESULT_SUMMARY\" AVE_ERROR=\"0.00\" VALID_POINTS=\"0\" />");
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

void TestGazepointProtocol::settings_are_shared_and_switches_are_not() {
    sim::Subject subject;
    Device device(DeviceOptions(), &subject);
    Switches first, second;
    device.execute({"SET", "ENABLE_SEND_TIME", {{"STATE", "1"}}}, &first);
    device.execute({"SET", "USER_DATA", {{"VALUE", "x"}}}, &first);
    QVERIFY(device.execute({"GET", "ENABLE_SEND_TIME", {}}, &second).contains("STATE=\"0\""));
    QVERIFY(device.execute({"GET", "USER_DATA", {}}, &second).contains("VALUE=\"x\""));
}

OCELA_TEST(TestGazepointProtocol)
#include "tst_gazepoint_protocol.moc"
