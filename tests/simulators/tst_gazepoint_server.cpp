#include "gazepoint/client.h"
#include "gazepoint/server.h"
#include "simulators/loopback_client.h"
#include "support/test_main.h"

#include <QTest>
#include <memory>

using namespace sim;
using namespace sim::gazepoint;

class TestGazepointServer : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { server_.reset(); }
    void sends_each_client_what_it_switched_on();
    void stops_when_told_to();
    void sends_a_record_in_a_segment_data();
    void sends_a_record_in_a_segment();
    void calibrates_over_the_wire();
    void sends_recorded_lines_once();
    void goes_silent();
    void drops_the_connection_mid_record();
    void disconnects_a_client_that_does_not_read();
    void tells_that_the_port_is_taken();

private:
    quint16 serve(const ServerOptions &options) {
        server_ = std::make_unique<Server>(options, &subject_);
        return server_->listen() ? server_->port() : quint16(0);
    }

    static ServerOptions options(double rate = 200, const FaultOptions &faults = {}) {
        ServerOptions options;
        options.port = 0;
        options.rate = rate;
        options.faults = faults;
        return options;
    }

    Subject subject_;
    std::unique_ptr<Server> server_;
};

void TestGazepointServer::sends_each_client_what_it_switched_on() {
    const quint16 port = serve(options());
    LoopbackClient first(port), second(port), quiet(port);
    quiet.enable("COUNTER");
    first.send("<SET ID=\"USER_DATA\" VALUE=\"mark\" />");  // this is the device's, and for all
    first.stream({"BLINK", "TIME", "COUNTER"});
    QVERIFY(!first.waitFor("<REC", 20).isEmpty());
    second.stream({"USER_DATA"});
    QCOMPARE(second.waitFor("<REC"), QByteArray("<REC USER=\"mark\" />"));
    int count = attributeOf(first.lines("<REC").first(), "CNT").toInt() - 1;
    for (const QByteArray &line : first.lines("<REC")) {
        QCOMPARE(attributeNames(line), (QByteArrayList{"CNT", "TIME", "BKID", "BKDUR", "BKPMIN"}));
        QCOMPARE(attributeOf(line, "CNT").toInt(), ++count);
    }
    QVERIFY(!quiet.waitFor("<ACK").isEmpty());
    QVERIFY(quiet.lines("<REC").isEmpty());
}

void TestGazepointServer::stops_when_told_to() {
    LoopbackClient client(serve(options()));
    client.stream({"COUNTER"});
    QVERIFY(!client.waitFor("<REC", 3).isEmpty());
    client.send("<SET ID=\"ENABLE_SEND_DATA\" STATE=\"0\" />");
    QVERIFY(!client.waitFor("<ACK ID=\"ENABLE_SEND_DATA\" STATE=\"0\"").isEmpty());
    const int records = client.lines("<REC").size();
    client.send("<GET ID=\"API_ID\" />");
    QVERIFY(!client.waitFor("<ACK ID=\"API_ID\"").isEmpty());
    QCOMPARE(client.lines("<REC").size(), records);
    client.enable("DATA");
    QVERIFY(!client.waitFor("<REC", records + 3).isEmpty());
}

void TestGazepointServer::sends_a_record_in_a_segment_data() {
    QTest::addColumn<bool>("whole");
    QTest::newRow("whole") << true;
    QTest::newRow("split by a fault") << false;
}

void TestGazepointServer::sends_a_record_in_a_segment() {
    QFETCH(bool, whole);
    const auto faults = whole ? QVector<Fault>{} : QVector<Fault>{Fault::Split};
    // Far enough apart to be read one by one even on a busy machine.
    LoopbackClient client(serve(options(50, {faults, 0})));
    client.stream({"COUNTER"});
    QVERIFY(!client.waitFor("<REC", 20).isEmpty());
    int asExpected = 0;
    for (const QByteArray &chunk : client.chunks)
        asExpected += chunk.count("<REC") == 1 && chunk.startsWith("<REC") && chunk.endsWith("/>\r\n") == whole;
    QVERIFY(asExpected >= 10);
    for (const QByteArray &line : client.lines("<REC"))
        QVERIFY2(line.startsWith("<REC CNT=\"") && line.endsWith("\" />"), line.constData());
}

void TestGazepointServer::calibrates_over_the_wire() {
    const quint16 port = serve(options());
    LoopbackClient client(port), observer(port);
    client.send("<SET ID=\"CALIBRATE_DELAY\" VALUE=\"0\" />");
    client.send("<SET ID=\"CALIBRATE_TIMEOUT\" VALUE=\"0.1\" />");
    client.send("<SET ID=\"CALIBRATE_START\" STATE=\"1\" />");
    QVERIFY(!client.waitFor("<CAL ID=\"CALIB_RESULT\"").isEmpty());
    QVERIFY(!observer.waitFor("<CAL ID=\"CALIB_RESULT\"").isEmpty());
    QVERIFY(client.received.indexOf("<ACK ID=\"CALIBRATE_START\"") < client.received.indexOf("<CAL"));
    QCOMPARE(client.lines("<CAL").size(), 11);
}

void TestGazepointServer::sends_recorded_lines_once() {
    QString error;
    const auto lines = LinePlayer::load(OCELA_TEST_DATA "/gazepoint_lines.txt", &error);
    QVERIFY2(lines, qPrintable(error));
    ServerOptions player = options();
    player.lines = *lines;
    player.once = true;
    LoopbackClient client(serve(player));
    client.stream({});
    QVERIFY(!client.waitFor("<REC", lines->size()).isEmpty());
    client.send("<GET ID=\"SCREEN_SIZE\" />");
    QVERIFY(!client.waitFor("<ACK ID=\"SCREEN_SIZE\"").isEmpty());
    QCOMPARE(client.lines("<REC"), QByteArrayList(lines->toList()));
}

void TestGazepointServer::goes_silent() {
    LoopbackClient client(serve(options(200, {{Fault::Silent}, 0.1})));
    client.stream({"COUNTER"});
    QVERIFY(!client.waitFor("<REC", 5).isEmpty());
    // A second client still is served; by the time it has been silenced, too, the first one long is.
    LoopbackClient second(server_->port());
    second.stream({});
    QVERIFY(!second.waitFor("<REC", 15).isEmpty());
    client.send("<GET ID=\"API_ID\" />");
    LoopbackClient third(server_->port());
    third.send("<GET ID=\"API_ID\" />");
    QVERIFY(!third.waitFor("<ACK").isEmpty());
    QVERIFY(client.lines("<ACK ID=\"API_ID\"").isEmpty());
    QCOMPARE(client.socket.state(), QAbstractSocket::ConnectedState);
}

void TestGazepointServer::drops_the_connection_mid_record() {
    LoopbackClient client(serve(options(200, {{Fault::Drop}, 0.05})));
    client.stream({"COUNTER", "TIME"});
    QTRY_COMPARE(client.socket.state(), QAbstractSocket::UnconnectedState);
    QVERIFY(client.lines("<REC").size() > 2);
    const QByteArray tail = client.received.mid(client.received.lastIndexOf('\n') + 1);
    QVERIFY2(tail.startsWith("<REC CNT") && !tail.contains("/>"), tail.constData());
}

void TestGazepointServer::disconnects_a_client_that_does_not_read() {
    const quint16 port = serve(options(5000));
    LoopbackClient lazy(port);
    lazy.socket.disconnect();  // nobody takes what comes
    lazy.socket.setReadBufferSize(1024);
    QTest::ignoreMessage(QtWarningMsg, "a client does not read what it asked for; it is disconnected");
    lazy.stream({"TIME", "POG_FIX", "POG_LEFT", "POG_RIGHT", "PUPIL_LEFT", "PUPIL_RIGHT", "EYE_LEFT"});
    QTRY_VERIFY(!server_->findChildren<Client *>().isEmpty());
    QTRY_VERIFY_WITH_TIMEOUT(server_->findChildren<Client *>().isEmpty(), 60000);
    LoopbackClient other(port);  // nobody else suffers
    other.stream({});
    QVERIFY(!other.waitFor("<REC", 3).isEmpty());
}

void TestGazepointServer::tells_that_the_port_is_taken() {
    ServerOptions same = options();
    same.port = serve(options());
    Server second(same, &subject_);
    QVERIFY(!second.listen());
    QVERIFY(!second.errorString().isEmpty());
}

OCELA_TEST(TestGazepointServer)
#include "tst_gazepoint_server.moc"
