#include "gazepoint/options.h"
#include "gazepoint/server.h"
#include "support/loopback_client.h"
#include "support/test_main.h"

#include <memory>

using namespace sim;
using namespace sim::gazepoint;

namespace {

auto parse(const QString &arguments) {
    return parseOptions(("simulator " + arguments).split(' ', Qt::SkipEmptyParts));
}

}  // namespace

class TestGazepointServer : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { server_.reset(); }
    void takes_its_options_from_the_command_line();
    void sends_each_client_the_fields_that_it_enabled();
    void sends_the_lines_of_a_file_once();
    void closes_the_connection_in_a_record();

private:
    quint16 serve(const ServerOptions &options) {
        server_ = std::make_unique<Server>(options, subject_);
        return server_->listen() ? server_->port() : quint16(0);
    }

    static ServerOptions options(double rateHz = 200, const FaultOptions &faults = {}) {
        ServerOptions options;
        options.port = 0;
        options.rateHz = rateHz;
        options.faults = faults;
        return options;
    }

    Subject subject_;
    std::unique_ptr<Server> server_;
};

void TestGazepointServer::takes_its_options_from_the_command_line() {
    const auto options = std::get<Options>(
        parse("--port 0 --rate=150 --seed 18446744073709551615 --blink-interval 2.5 --older-server --once "
              "--record a.csv --fault split,nan --fault drop --fault-after 7 --screen 1920x1080-1920+0"));
    QCOMPARE(options.server.port, quint16(0));
    QCOMPARE(options.server.rateHz, 150.0);
    QCOMPARE(options.subject.seed, ~std::uint64_t(0));
    QCOMPARE(options.subject.blinkInterval_s, 2.5);
    QVERIFY(options.server.olderServer && options.server.once && !options.followMouse);
    QCOMPARE(options.recordFile + options.linesFile, QString("a.csv"));
    QCOMPARE(options.server.faults.faults, (QVector<Fault>{Fault::Split, Fault::Nan, Fault::Drop}));
    QCOMPARE(options.server.faults.after_s, 7.0);
    QCOMPARE(options.server.screen.x + ' ' + options.server.screen.y, QByteArray("-1920 0"));
    for (const char *arguments :
         {"--rate fast", "--port 65536", "--fault split,fire", "--record a --lines b", "--truth a --lines b",
          "--offset 1,2,3", "--offset 1,21", "--offset nan", "--offset ,", "--noise -0.1", "--noise 6", "--noise 1,1"})
        QVERIFY2(std::holds_alternative<QString>(parse(arguments)), arguments);
}

void TestGazepointServer::sends_each_client_the_fields_that_it_enabled() {
    const quint16 port = serve(options());
    LoopbackClient first(port);
    LoopbackClient second(port);
    server_->setCursor({0.25, -0.5});
    first.send("<SET ID=\"USER_DATA\" VALUE=\"mark\" />");  // a value of the device, for all clients
    first.stream({"BLINK", "COUNTER"});
    QVERIFY(!first.waitFor("<REC", 20).isEmpty());
    second.stream({"USER_DATA", "CURSOR"});
    QCOMPARE(second.waitFor("<REC"), QByteArray("<REC CX=\"0.25000\" CY=\"-0.50000\" CS=\"0\" USER=\"mark\" />"));
    int count = attributeOf(first.lines("<REC").first(), "CNT").toInt() - 1;
    for (const QByteArray &line : first.lines("<REC")) {
        QCOMPARE(formOf(line), QByteArray("<REC CNT=integer BKID=integer BKDUR=real BKPMIN=integer />"));
        QCOMPARE(attributeOf(line, "CNT").toInt(), ++count);
    }
    first.send("<SET ID=\"ENABLE_SEND_DATA\" STATE=\"0\" />");
    QVERIFY(!first.waitFor("<ACK ID=\"ENABLE_SEND_DATA\" STATE=\"0\"").isEmpty());
    const int records = first.lines("<REC").size();
    QVERIFY(!second.waitFor("<REC", second.lines("<REC").size() + 20).isEmpty());
    QCOMPARE(first.lines("<REC").size(), records);
}

void TestGazepointServer::sends_the_lines_of_a_file_once() {
    ServerOptions player = options();
    player.lines = std::get<QVector<QByteArray>>(LinePlayer::load(OCELA_TEST_DATA "/gazepoint_lines.txt"));
    player.once = true;
    LoopbackClient first(serve(player));
    LoopbackClient second(server_->port());
    // The first client gets no more lines while the second gets them.
    for (LoopbackClient *client : {&first, &second}) {
        client->stream({});
        QVERIFY(!client->waitFor("<REC", player.lines.size()).isEmpty());
    }
    QCOMPARE(first.lines("<REC"), capturedLines("<REC"));
}

void TestGazepointServer::closes_the_connection_in_a_record() {
    LoopbackClient client(serve(options(200, {{Fault::Drop}, 0.05})));
    client.stream({"COUNTER", "TIME"});
    QTRY_COMPARE(client.socket.state(), QAbstractSocket::UnconnectedState);
    QVERIFY(client.lines("<REC").size() > 2);
    const QByteArray tail = client.received.mid(client.received.lastIndexOf('\n') + 1);
    QVERIFY2(tail.startsWith("<REC CNT") && !tail.contains("/>"), tail.constData());
}

OCELA_TEST(TestGazepointServer)
#include "tst_gazepoint_server.moc"
