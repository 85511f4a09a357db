#include "gazepoint/client.h"
#include "gazepoint/server.h"
#include "simulators/loopback_client.h"
#include "support/test_main.h"

#include <QTest>
#include <algorithm>
#include <memory>

using namespace sim;
using namespace sim::gazepoint;

class TestGazepointServer : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { server_.reset(); }
    void sends_each_client_what_it_switched_on();
    void stops_when_told_to();
    void splits_a_record_only_when_told_to();
    void calibrates_over_the_wire();
    void sends_recorded_lines_once();
    void drops_the_connection_mid_record();
    void disconnects_a_client_that_does_not_read();

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
    LoopbackClient first(port), second(port);
    first.send("<SET ID=\"USER_DATA\" VALUE=\"mark\" />");  // this is the device's, and for all
    first.stream({"BLINK", "COUNTER"});
    QVERIFY(!first.waitFor("<REC", 20).isEmpty());
    second.stream({"USER_DATA"});
    QCOMPARE(second.waitFor("<REC"), QByteArray("<REC USER=\"mark\" />"));
    int count = attributeOf(first.lines("<REC").first(), "CNT").toInt() - 1;
    for (const QByteArray &line : first.lines("<REC")) {
        QCOMPARE(formOf(line), QByteArray("<REC CNT=integer BKID=integer BKDUR=real BKPMIN=integer />"));
        QCOMPARE(attributeOf(line, "CNT").toInt(), ++count);
    }
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
}

void TestGazepointServer::splits_a_record_only_when_told_to() {
    const auto isWhole = [](const QByteArray &chunk) { return chunk.startsWith('<') && chunk.endsWith("/>\r\n"); };
    for (const bool whole : {true, false}) {
        LoopbackClient client(serve(options(200, {whole ? QVector<Fault>{} : QVector<Fault>{Fault::Split}, 0})));
        client.stream({"COUNTER"});
        QVERIFY(!client.waitFor("<REC", 20).isEmpty());
        // A busy reader finds several records or both halves of one in a chunk, but some time it keeps up.
        const auto allWhole = [&] { return std::all_of(client.chunks.begin(), client.chunks.end(), isWhole); };
        QVERIFY(whole ? allWhole() : QTest::qWaitFor([&] { return !allWhole(); }, 20000));
    }
}

void TestGazepointServer::calibrates_over_the_wire() {
    const quint16 port = serve(options());
    LoopbackClient client(port), observer(port);
    client.send("<SET ID=\"CALIBRATE_TIMEOUT\" VALUE=\"0.1\" />");
    client.send("<SET ID=\"CALIBRATE_START\" STATE=\"1\" />");
    QVERIFY(!observer.waitFor("<CAL ID=\"CALIB_RESULT\"").isEmpty());
    QCOMPARE(observer.lines("<CAL").size(), 11);
}

void TestGazepointServer::sends_recorded_lines_once() {
    QString error;
    ServerOptions player = options();
    player.lines = LinePlayer::load(OCELA_TEST_DATA "/gazepoint_lines.txt", &error).value_or(QVector<QByteArray>());
    player.once = true;
    LoopbackClient first(serve(player)), second(server_->port());
    for (LoopbackClient *client : {&first, &second}) {  // while the second gets its own, the first gets no more
        client->stream({});
        QVERIFY(!client->waitFor("<REC", player.lines.size()).isEmpty());
    }
    QCOMPARE(first.lines("<REC"), capturedLines("<REC"));
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
    LoopbackClient lazy(serve(options(5000)));
    lazy.socket.disconnect();  // nobody takes what comes
    lazy.socket.setReadBufferSize(1024);
    QTest::ignoreMessage(QtWarningMsg, "a client does not read what it asked for; it is disconnected");
    lazy.stream({"TIME", "POG_FIX", "POG_LEFT", "POG_RIGHT", "PUPIL_LEFT", "PUPIL_RIGHT", "EYE_LEFT"});
    QTRY_VERIFY(!server_->findChildren<Client *>().isEmpty());
    QTRY_VERIFY_WITH_TIMEOUT(server_->findChildren<Client *>().isEmpty(), 60000);
}

OCELA_TEST(TestGazepointServer)
#include "tst_gazepoint_server.moc"
