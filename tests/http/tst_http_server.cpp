#include "http/http_listener.h"
#include "http/http_request.h"
#include "http/http_request_handler.h"
#include "http/http_response.h"
#include "support/test_main.h"

#include <QElapsedTimer>
#include <QRegularExpression>
#include <QSettings>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>
#include <stdexcept>

namespace {

constexpr int patienceMs = 20000;
const QByteArray ok = "HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nok";

/// Answers as the path asks for.
class Answers : public HttpRequestHandler {
public:
    void service(HttpRequest &request, HttpResponse &response) override {
        const QByteArray path = request.getPath();
        if (path == "/throws")
            throw std::runtime_error("not for the client");
        if (path == "/parts") {
            response.write("a");
            response.write("b", true);
        } else if (path == "/unframed") {
            response.setHeader("connection", "close");
            response.setHeader("content-length", 1);
            response.write("a");
        } else if (path == "/body") {
            response.write(request.getBody(), true);
        } else if (path == "/large") {
            response.write(QByteArray(50000000, 'x'), true);
        } else if (path != "/silent") {
            response.write("ok", true);
        }
    }
};

/// A server of its own on a port that the system chose.
class Server {
public:
    explicit Server(const QMap<QString, QVariant> &values = {})
        : settings_(folder_.filePath("server.ini"), QSettings::IniFormat) {
        settings_.setValue("host", "127.0.0.1");
        for (auto value = values.begin(); value != values.end(); ++value)
            settings_.setValue(value.key(), value.value());
        listener = std::make_unique<HttpListener>(&settings_, &answers_);
    }

private:
    QTemporaryDir folder_;
    QSettings settings_;
    Answers answers_;

public:
    std::unique_ptr<HttpListener> listener;
};

/// A client that sees every byte.
class Client : public QTcpSocket {
public:
    explicit Client(const Server &server, const QByteArray &request = QByteArray()) {
        connectToHost("127.0.0.1", server.listener->serverPort());
        write(request);
    }

    /// What came until `end`, or until the server closed.
    QByteArray receive(const QByteArray &end = QByteArray()) {
        const auto done = [&] { return !end.isEmpty() && received.endsWith(end); };
        (void)QTest::qWaitFor(
            [&] {
                received += readAll();
                return done() || state() == UnconnectedState;
            },
            patienceMs);
        return received;
    }

    QByteArray received;
};

}  // namespace

/// The server over real connections.
class TestHttpServer : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void exchanges_data();
    void exchanges();
    void silenceEndsAConnection();
    void aSlowUploadIsNoSilence();
    void tooManyConnectionsAreRefused();
    void aClientThatLeavesFreesItsHandler();
    void closingWaitsForNoClient();
    void idleHandlersRetireOneByOne();
    void aPortInUseIsReported();
    void aMissingCertificateLeavesTheServerPlain();
};

void TestHttpServer::exchanges_data() {
    QTest::addColumn<QByteArray>("request");
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<bool>("closed");
    const QByteArray okClosing = "HTTP/1.1 200 OK\r\nConnection: close\r\nContent-Length: 2\r\n\r\nok";
    const QByteArray badRequest = "HTTP/1.1 400 bad request\r\nConnection: close\r\n\r\n400 Bad request\r\n";
    const QByteArray tooLarge = "HTTP/1.1 413 entity too large\r\nConnection: close\r\n\r\n413 Entity too large\r\n";
    const auto row = [](const char *name, const QByteArray &request, const QByteArray &answer, bool closed) {
        QTest::newRow(name) << request << answer << closed;
    };

    row("a length keeps the connection", "GET / HTTP/1.1\r\n\r\n", ok, false);
    row("requests in one packet are answered in order",
        "GET / HTTP/1.1\r\n\r\nGET /silent HTTP/1.1\r\n\r\n\r\nGET / HTTP/1.1\r\n\r\n",
        ok + "HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n" + ok, false);
    row("the client may ask to close", "GET / HTTP/1.1\r\nconnection: CLOSE\r\n\r\nGET / HTTP/1.1\r\n\r\n", okClosing,
        true);
    row("an old client is not kept", "GET / HTTP/1.0\r\n\r\n", okClosing, true);
    row("an old client is not kept even if it asks", "GET / HTTP/1.0\r\nConnection: keep-alive\r\n\r\n", okClosing,
        true);
    row("chunks keep the connection", "GET /parts HTTP/1.1\r\n\r\n",
        "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n1\r\na\r\n1\r\nb\r\n0\r\n\r\n", false);
    row("a length in other case is none", "GET /unframed HTTP/1.1\r\n\r\n",
        "HTTP/1.1 200 OK\r\nconnection: close\r\ncontent-length: 1\r\n\r\na", true);
    row("an exception finishes the response", "GET /throws HTTP/1.1\r\n\r\nGET / HTTP/1.1\r\n\r\n",
        "HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n" + ok, false);
    row("a body reaches the handler", "POST /body HTTP/1.1\r\nContent-Length: 3\r\n\r\nabcGET / HTTP/1.1\r\n\r\n",
        "HTTP/1.1 200 OK\r\nContent-Length: 3\r\n\r\nabc" + ok, false);
    row("a broken first line", "GET  / HTTP/1.1\r\n", badRequest, true);
    row("an announced body beyond the limit", "POST / HTTP/1.1\r\nContent-Length: 1000\r\n\r\nabc", tooLarge, true);
    row("headers beyond the limit", "GET / HTTP/1.1\r\nX: " + QByteArray(2000, 'x') + "\r\n\r\n", tooLarge, true);
}

void TestHttpServer::exchanges() {
    QFETCH(const QByteArray, request);
    QFETCH(const QByteArray, answer);
    QFETCH(const bool, closed);
    if (answer.startsWith("HTTP/1.1 4"))
        QTest::ignoreMessage(QtWarningMsg,
                             QRegularExpression("^HttpRequest: .*(invalid first line|too large|too many)"));
    const Server server({{"maxRequestSize", 1000}});
    Client client(server, request);
    QCOMPARE(client.receive(closed ? QByteArray() : answer), answer);
    if (!closed) {
        client.received.clear();
        client.write("GET / HTTP/1.1\r\n\r\n");
        QCOMPARE(client.receive(ok), ok);
    }
}

void TestHttpServer::silenceEndsAConnection() {
    const Server server({{"readTimeout", 100}});
    Client half(server, "GET / HTTP/1.1\r\nX: ");
    QCOMPARE(half.receive(), QByteArray());
    Client kept(server, "GET / HTTP/1.1\r\n\r\n");
    QCOMPARE(kept.receive(), ok);
}

void TestHttpServer::aSlowUploadIsNoSilence() {
    const Server server({{"readTimeout", 1000}});
    Client client(server, "POST /body HTTP/1.1\r\nConnection: close\r\nContent-Length: 4\r\n\r\n");
    for (int sent = 0; sent < 4; ++sent) {
        QTest::qWait(300);  // longer than one wait of the server's, shorter than its patience
        client.write("x");
    }
    QVERIFY(client.receive().endsWith("\r\n\r\nxxxx"));
}

void TestHttpServer::tooManyConnectionsAreRefused() {
    const Server server({{"maxThreads", 1}});
    Client first(server, "GET / HTTP/1.1\r\n\r\n");
    QCOMPARE(first.receive(ok), ok);
    Client second(server);
    QCOMPARE(second.receive(),
             QByteArray("HTTP/1.1 503 too many connections\r\nConnection: close\r\n\r\nToo many connections\r\n"));
    first.write("GET / HTTP/1.1\r\n\r\n");
    QCOMPARE(first.receive(ok + ok), ok + ok);
}

void TestHttpServer::aClientThatLeavesFreesItsHandler() {
    const Server server({{"maxThreads", 1}});
    for (const char *request :
         {"GET /large HTTP/1.1\r\n\r\n", "GET / HT", "POST / HTTP/1.1\r\nContent-Length: 9\r\n\r\n"}) {
        // Repeated, the first makes requests that could be served for minutes.
        Client leaving(server, QByteArray(request).repeated(request[5] == 'l' ? 2000 : 1));
        QVERIFY(leaving.waitForBytesWritten(patienceMs));
        if (request[5] == 'l')
            QTRY_VERIFY(leaving.bytesAvailable() > 0);
        leaving.abort();
        QVERIFY(
            QTest::qWaitFor([&] { return Client(server, "GET / HTTP/1.1\r\n\r\n").receive(ok) == ok; }, patienceMs));
    }
}

void TestHttpServer::closingWaitsForNoClient() {
    const Server server;
    Client writing(server, "GET / HT");
    Client notReading(server, QByteArray("GET /large HTTP/1.1\r\n\r\n").repeated(2000));
    notReading.setReadBufferSize(1);
    QTRY_VERIFY(notReading.bytesAvailable() > 0);
    QElapsedTimer duration;
    duration.start();
    server.listener->close();
    QVERIFY2(duration.elapsed() < patienceMs, qPrintable(QString::number(duration.elapsed())));
    QVERIFY(!server.listener->isListening());
    server.listener->listen();
    Client client(server, "GET / HTTP/1.1\r\n\r\n");
    QCOMPARE(client.receive(ok), ok);
}

static int retired = 0;

void TestHttpServer::idleHandlersRetireOneByOne() {
    const Server server({{"cleanupInterval", 50}, {"minThreads", 1}});
    retired = 0;
    const auto previous = qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &text) {
        if (text.contains(
                QRegularExpression("^HttpConnectionHandlerPool: Removed connection handler \\(0x[0-9a-f]+\\), "
                                   "pool size is now [12]$")))
            ++retired;
    });
    {
        Client a(server, "GET / HTTP/1.1\r\n\r\n"), b(server, "GET / HTTP/1.1\r\n\r\n"),
            c(server, "GET / HTTP/1.1\r\n\r\n");
        for (Client *client : {&a, &b, &c})
            client->receive(ok);
    }
    (void)QTest::qWaitFor([] { return retired == 2; }, patienceMs);
    QTest::qWait(200);
    qInstallMessageHandler(previous);
    QCOMPARE(retired, 2);
}

void TestHttpServer::aPortInUseIsReported() {
    const Server first;
    const quint16 port = first.listener->serverPort();
    const auto text = QString("HttpListener: Cannot bind on port %1: The bound address is already in use").arg(port);
    QTest::ignoreMessage(QtCriticalMsg, qPrintable(text));
    const Server second({{"port", port}});
    QVERIFY(!second.listener->isListening());
    first.listener->close();
    second.listener->listen();
    QVERIFY(second.listener->isListening());
}

void TestHttpServer::aMissingCertificateLeavesTheServerPlain() {
    QTest::ignoreMessage(QtCriticalMsg,
                         QRegularExpression("^HttpConnectionHandlerPool: cannot open sslCertFile .+/none\\.pem$"));
    const Server server({{"sslKeyFile", "key.pem"}, {"sslCertFile", "none.pem"}});
    Client client(server, "GET / HTTP/1.1\r\n\r\n");
    QCOMPARE(client.receive(ok), ok);
}

OCELA_TEST(TestHttpServer)
#include "tst_http_server.moc"
