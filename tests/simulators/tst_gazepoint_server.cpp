#include "gazepoint/client.h"
#include "gazepoint/server.h"
#include "simulators/loopback_client.h"
#include "support/test_main.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTest>
#include <memory>

using namespace sim;
using namespace sim::gazepoint;

class TestGazepointServer : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void sends_what_a_client_switched_on();
    void keeps_the_clients_apart();
    void stops_when_told_to();
    void sends_a_record_in_a_segment();
    void calibrates_over_the_wire();
    void answers_as_an_older_server();
    void sends_recorded_lines();
    void splits_records();
    void goes_silent();
    void drops_the_connection_mid_record();
    void sends_an_endless_line();
    void disconnects_a_client_that_does_not_read();
    void survives_clients_that_come_and_go();
    void tells_that_the_port_is_taken();

private:
    quint16 serve(const ServerOptions &options) {
        server_ = std::make_unique<Server>(options, &subject_);
        return server_->listen() ? server_->port() : quint16(0);
    }

    static ServerOptions fast() {
        ServerOptions options;
        options.port = 0;
        options.rate = 200;
        return options;
    }

    static ServerOptions faulty(Fault fault, double after) {
        ServerOptions options = fast();
        options.faults = {{fault}, after};
        return options;
    }

    Subject subject_;
    std::unique_ptr<Server> server_;
};

void TestGazepointServer::init() {
    server_.reset();
}

void TestGazepointServer::sends_what_a_client_switched_on() {
    LoopbackClient client(serve(fast()));
    for (const char *group : {"USER_DATA", "POG_FIX", "TIME", "COUNTER", "DATA"})
        client.enable(group);
    QVERIFY(!client.waitFor("<REC", 20).isEmpty());
    const QByteArrayList acknowledged = client.lines("<ACK");
    QCOMPARE(acknowledged.size(), 5);
    QCOMPARE(acknowledged.first(), QByteArray("<ACK ID=\"ENABLE_SEND_USER_DATA\" STATE=\"1\" />"));
    int count = attributeOf(client.lines("<REC").first(), "CNT").toInt() - 1;
    for (const QByteArray &line : client.lines("<REC")) {
        QCOMPARE(attributeNames(line),
                 (QByteArrayList{"CNT", "TIME", "FPOGX", "FPOGY", "FPOGS", "FPOGD", "FPOGID", "FPOGV", "USER"}));
        QCOMPARE(attributeOf(line, "CNT").toInt(), ++count);
    }
}

void TestGazepointServer::keeps_the_clients_apart() {
    const quint16 port = serve(fast());
    LoopbackClient first(port), second(port), quiet(port);
    first.enable("COUNTER");
    second.enable("TIME");
    quiet.enable("COUNTER");
    for (LoopbackClient *client : {&first, &second})
        client->enable("DATA");
    first.send("<SET ID=\"USER_DATA\" VALUE=\"mark\" />");
    first.enable("USER_DATA");
    QVERIFY(!first.waitFor("<REC", 10).isEmpty());
    QVERIFY(!second.waitFor("<REC", 10).isEmpty());
    QVERIFY(first.lines("<REC").last().endsWith("USER=\"mark\" />"));
    QCOMPARE(attributeNames(second.lines("<REC").last()), QByteArrayList{"TIME"});
    QVERIFY(!quiet.waitFor("<ACK").isEmpty());
    QVERIFY(quiet.lines("<REC").isEmpty());
}

void TestGazepointServer::stops_when_told_to() {
    LoopbackClient client(serve(fast()));
    client.enable("COUNTER");
    client.enable("DATA");
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

void TestGazepointServer::sends_a_record_in_a_segment() {
    ServerOptions options = fast();
    options.rate = 50;  // far enough apart to be read one by one even on a busy machine
    LoopbackClient client(serve(options));
    client.enable("COUNTER");
    client.enable("DATA");
    QVERIFY(!client.waitFor("<REC", 20).isEmpty());
    int whole = 0;
    for (const QByteArray &chunk : client.chunks)
        whole += chunk.startsWith("<REC") && chunk.count("<REC") == 1 && chunk.endsWith("/>\r\n") ? 1 : 0;
    QVERIFY(whole >= 15);
}

void TestGazepointServer::calibrates_over_the_wire() {
    const quint16 port = serve(fast());
    LoopbackClient client(port), observer(port);
    client.send("<SET ID=\"CALIBRATE_DELAY\" VALUE=\"0\" />");
    client.send("<SET ID=\"CALIBRATE_TIMEOUT\" VALUE=\"0.1\" />");
    client.send("<SET ID=\"CALIBRATE_START\" STATE=\"1\" />");
    QVERIFY(!client.waitFor("<CAL ID=\"CALIB_RESULT\"").isEmpty());
    QVERIFY(!observer.waitFor("<CAL ID=\"CALIB_RESULT\"").isEmpty());
    QVERIFY(client.received.indexOf("<ACK ID=\"CALIBRATE_START\"") < client.received.indexOf("<CAL"));
    QCOMPARE(client.lines("<CAL").size(), 11);
    QCOMPARE(client.lines("<CAL ID=\"CALIB_RESULT\"").first(), client.lines("<CAL").last());
}

void TestGazepointServer::answers_as_an_older_server() {
    ServerOptions options = fast();
    options.olderServer = true;
    options.screen.width = "-3";
    LoopbackClient client(serve(options));
    client.send("<GET ID=\"SCREEN_SIZE\" />");
    QCOMPARE(client.waitFor("<ACK"), QByteArray("<ACK ID=\"SCREEN_SIZE\" WIDTH=\"-3\" HEIGHT=\"1080\" />"));
}

void TestGazepointServer::sends_recorded_lines() {
    QString error;
    const auto lines = LinePlayer::load(OCELA_TEST_DATA "/gazepoint_lines.txt", &error);
    QVERIFY2(lines, qPrintable(error));
    ServerOptions options = fast();
    options.lines = *lines;
    options.once = true;
    const quint16 port = serve(options);
    LoopbackClient early(port);
    early.enable("DATA");
    QVERIFY(!early.waitFor("<REC", lines->size()).isEmpty());
    LoopbackClient late(port);
    late.enable("DATA");
    QVERIFY(!late.waitFor("<REC", lines->size()).isEmpty());
    early.send("<GET ID=\"SCREEN_SIZE\" />");
    QVERIFY(!early.waitFor("<ACK ID=\"SCREEN_SIZE\"").isEmpty());
    QCOMPARE(early.lines("<REC"), QByteArrayList(lines->toList()));
    QCOMPARE(late.lines("<REC"), QByteArrayList(lines->toList()));

    QVERIFY(!LinePlayer::load(OCELA_TEST_DATA "/absent.txt", &error));
    QVERIFY(error.contains("absent.txt"));
}

void TestGazepointServer::splits_records() {
    ServerOptions options = faulty(Fault::Split, 0);
    options.rate = 50;
    LoopbackClient client(serve(options));
    client.enable("COUNTER");
    client.enable("DATA");
    QVERIFY(!client.waitFor("<REC", 20).isEmpty());
    int halves = 0;
    for (const QByteArray &chunk : client.chunks)
        halves += chunk.startsWith("<REC") && !chunk.contains("/>") ? 1 : 0;
    QVERIFY(halves >= 10);
    for (const QByteArray &line : client.lines("<REC"))
        QVERIFY2(line.startsWith("<REC CNT=\"") && line.endsWith("\" />"), line.constData());
}

void TestGazepointServer::goes_silent() {
    LoopbackClient client(serve(faulty(Fault::Silent, 0.1)));
    client.enable("COUNTER");
    client.enable("DATA");
    QVERIFY(!client.waitFor("<REC", 5).isEmpty());
    // A second client still is served; by the time it has been silenced, too, the first one long is.
    LoopbackClient second(server_->port());
    second.enable("DATA");
    QVERIFY(!second.waitFor("<REC", 15).isEmpty());
    client.send("<GET ID=\"API_ID\" />");
    LoopbackClient third(server_->port());
    third.send("<GET ID=\"API_ID\" />");
    QVERIFY(!third.waitFor("<ACK").isEmpty());
    QVERIFY(client.lines("<ACK ID=\"API_ID\"").isEmpty());
    QCOMPARE(client.socket.state(), QAbstractSocket::ConnectedState);
}

void TestGazepointServer::drops_the_connection_mid_record() {
    LoopbackClient client(serve(faulty(Fault::Drop, 0.05)));
    client.enable("COUNTER");
    client.enable("TIME");
    client.enable("DATA");
    QTRY_COMPARE(client.socket.state(), QAbstractSocket::UnconnectedState);
    QVERIFY(client.lines("<REC").size() > 2);
    const QByteArray tail = client.received.mid(client.received.lastIndexOf('\n') + 1);
    QVERIFY2(tail.startsWith("<REC CNT") && !tail.contains("/>"), tail.constData());
}

void TestGazepointServer::sends_an_endless_line() {
    LoopbackClient client(serve(faulty(Fault::Endless, 0)));
    client.enable("DATA");
    QTRY_VERIFY_WITH_TIMEOUT(client.received.size() >= 10 * 1000 * 1000, 30000);
    QVERIFY(!client.received.mid(200).contains('\n'));
    QCOMPARE(client.socket.state(), QAbstractSocket::ConnectedState);
}

void TestGazepointServer::disconnects_a_client_that_does_not_read() {
    ServerOptions options = fast();
    options.rate = 5000;
    const quint16 port = serve(options);
    QTcpSocket lazy;
    lazy.setReadBufferSize(1024);
    lazy.connectToHost(QHostAddress::LocalHost, port);
    QTest::ignoreMessage(QtWarningMsg, "a client does not read what it asked for; it is disconnected");
    QByteArray request;
    for (const char *group :
         {"TIME", "POG_FIX", "POG_LEFT", "POG_RIGHT", "PUPIL_LEFT", "PUPIL_RIGHT", "EYE_LEFT", "DATA"})
        request += QByteArray("<SET ID=\"ENABLE_SEND_") + group + "\" STATE=\"1\" />\r\n";
    lazy.write(request);
    QTRY_VERIFY(!server_->findChildren<Client *>().isEmpty());
    QTRY_VERIFY_WITH_TIMEOUT(server_->findChildren<Client *>().isEmpty(), 60000);
    LoopbackClient other(port);  // nobody else suffers
    other.enable("DATA");
    QVERIFY(!other.waitFor("<REC", 3).isEmpty());
}

void TestGazepointServer::survives_clients_that_come_and_go() {
    const quint16 port = serve(fast());
    for (int round = 0; round < 20; ++round) {
        LoopbackClient client(port);
        client.enable("DATA");
        QVERIFY(!client.waitFor("<REC").isEmpty());
        client.socket.abort();
    }
    QTRY_VERIFY(server_->findChildren<Client *>().isEmpty());
}

void TestGazepointServer::tells_that_the_port_is_taken() {
    ServerOptions options = fast();
    options.port = serve(fast());
    Server second(options, &subject_);
    QVERIFY(!second.listen());
    QVERIFY(!second.errorString().isEmpty());
}

OCELA_TEST(TestGazepointServer)
#include "tst_gazepoint_server.moc"
