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
    void refuses_what_it_cannot_do();
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
    QTest::newRow("as the manual has it") << List{"<SET ID=\"A\" STATE=\"1\" />\r\n"} << on;
    QTest::newRow("no line end at all") << List{"<SET ID=\"A\" STATE=\"1\" /><GET ID=\"B\" />"}
                                        << List{"SET A STATE=1", "GET B"};
    QTest::newRow("one over several segments") << List{"<SE", "T ID=\"A\" STA", "TE=\"1", "\" /", ">\r\n"} << on;
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

void TestGazepointProtocol::refuses_what_it_cannot_do() {
    sim::Subject subject;
    Device device(DeviceOptions(), &subject);
    Switches switches;
    QCOMPARE(device.execute({"SET", "ENABLE_SEND_SMELL", {{"STATE", "1"}}}, &switches),
             QByteArray("<NACK ID=\"ENABLE_SEND_SMELL\" />"));
    device.execute({"SET", "CALIBRATE_CLEAR", {}}, &switches);
    QCOMPARE(device.execute({"SET", "CALIBRATE_START", {{"STATE", "1"}}}, &switches),
             QByteArray("<ACK ID=\"CALIBRATE_START\" STATE=\"0\" />"));
}

OCELA_TEST(TestGazepointProtocol)
#include "tst_gazepoint_protocol.moc"
