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
#include <atomic>
#include <stdexcept>

namespace {

constexpr int timeoutMs = 20000;
const QByteArray ok = "HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nok";

/// A body larger than the system's buffers for a connection, in more pieces than one system call accepts.
const QVector<QByteArray> &largeBody() {
    static const QVector<QByteArray> pieces = [] {
        QVector<QByteArray> result;
        for (int i = 0; i < 100; ++i)
            result.append(QByteArray(200000, static_cast<char>(i)));
        return result;
    }();
    return pieces;
}

/// Selects the response by the path, and counts the requests.
class Handler : public HttpRequestHandler {
public:
    void service(HttpRequest &request, HttpResponse &response) override {
        ++requestCount;
        const QByteArray path = request.getPath();
        if (path == "/default")
            return HttpRequestHandler::service(request, response);
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
            response.write(largeBody(), true);
        } else if (path != "/silent") {
            response.write("ok", true);
        }
    }

    std::atomic<int> requestCount{0};
};

/// A server on a port that the system chooses.
struct Server {
    explicit Server(const QMap<QString, QVariant> &values = {}) {
        settings.setValue("host", "127.0.0.1");
        for (auto value = values.begin(); value != values.end(); ++value)
            settings.setValue(value.key(), value.value());
        listener = std::make_unique<HttpListener>(&settings, &handler);
    }

    QTemporaryDir folder;
    QSettings settings{folder.filePath("server.ini"), QSettings::IniFormat};
    Handler handler;
    std::unique_ptr<HttpListener> listener;
};

/// A client that stores all received bytes.
class Client : public QTcpSocket {
public:
    explicit Client(const Server &server, const QByteArray &request = QByteArray()) {
        connectToHost("127.0.0.1", server.listener->serverPort());
        write(request);
    }

    /// Returns everything received until it ends with `end`, or until the server closes the connection.
    QByteArray receive(const QByteArray &end = QByteArray()) {
        const auto done = [&] { return !end.isEmpty() && received.endsWith(end); };
        (void)QTest::qWaitFor(
            [&] {
                received += readAll();
                return done() || state() == UnconnectedState;
            },
            timeoutMs);
        return received;
    }

    QByteArray received;
};

}  // namespace

/// Tests the server with real connections.
class TestHttpServer : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void exchanges_data();
    void exchanges();
    void readTimeoutClosesConnections();
    void bodiesAndRequestsExtendTheReadTimeout();
    void slowReadersReceiveEveryByte();
    void disconnectedClientsFreeTheirHandler_data();
    void disconnectedClientsFreeTheirHandler();
    void closeEndsAllConnections();
    void acceptingResumesAfterAnError();
    void listeningAddresses();
    void missingCertificateDisablesTls();
};

void TestHttpServer::exchanges_data() {
    QTest::addColumn<QByteArray>("request");
    QTest::addColumn<QByteArray>("response");
    QTest::addColumn<bool>("closed");
    const QByteArray okClosing = "HTTP/1.1 200 OK\r\nConnection: close\r\nContent-Length: 2\r\n\r\nok";
    const auto row = [](const char *name, const QByteArray &request, const QByteArray &response, bool closed) {
        QTest::newRow(name) << request << response << closed;
    };

    row("a content length keeps the connection open", "GET / HTTP/1.1\r\n\r\n", ok, false);
    row("requests in one packet are served in order",
        "GET / HTTP/1.1\r\n\r\nGET /silent HTTP/1.1\r\n\r\n\r\nGET / HTTP/1.1\r\n\r\n",
        ok + "HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n" + ok, false);
    row("the client asks to close", "GET / HTTP/1.1\r\nconnection: CLOSE\r\n\r\nGET / HTTP/1.1\r\n\r\n", okClosing,
        true);
    row("an HTTP/1.0 connection is closed, and its body is not sent in chunks", "GET /parts HTTP/1.0\r\n\r\n",
        "HTTP/1.1 200 OK\r\nConnection: close\r\n\r\nab", true);
    row("an HTTP/1.0 connection is closed despite keep-alive", "GET / HTTP/1.0\r\nConnection: keep-alive\r\n\r\n",
        okClosing, true);
    row("chunks keep the connection open", "GET /parts HTTP/1.1\r\n\r\n",
        "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n1\r\na\r\n1\r\nb\r\n0\r\n\r\n", false);
    row("a lower-case content-length header does not keep the connection open", "GET /unframed HTTP/1.1\r\n\r\n",
        "HTTP/1.1 200 OK\r\nconnection: close\r\ncontent-length: 1\r\n\r\na", true);
    row("an exception completes the response", "GET /throws HTTP/1.1\r\n\r\nGET / HTTP/1.1\r\n\r\n",
        "HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n" + ok, false);
    row("the handler receives the body", "POST /body HTTP/1.1\r\nContent-Length: 3\r\n\r\nabcGET / HTTP/1.1\r\n\r\n",
        "HTTP/1.1 200 OK\r\nContent-Length: 3\r\n\r\nabc" + ok, false);
    row("a handler that does not override service() sends 501", "GET /default HTTP/1.1\r\n\r\n",
        "HTTP/1.1 501 not implemented\r\nContent-Length: 19\r\n\r\n501 not implemented", false);
}

void TestHttpServer::exchanges() {
    QFETCH(const QByteArray, request);
    QFETCH(const QByteArray, response);
    QFETCH(const bool, closed);
    if (response.startsWith("HTTP/1.1 501"))
        QTest::ignoreMessage(QtCriticalMsg, "HttpRequestHandler: you need to override the service() function");
    // The read timeout is longer than the test waits, so that it cannot close the connection.
    const Server server({{"readTimeout", 10 * timeoutMs}});
    Client client(server, request);
    QCOMPARE(client.receive(closed ? QByteArray() : response), response);
    QCOMPARE(client.state() == QAbstractSocket::UnconnectedState, closed);
    if (!closed) {
        client.received.clear();
        client.write("GET / HTTP/1.1\r\n\r\n");
        QCOMPARE(client.receive(ok), ok);
    }
}

void TestHttpServer::readTimeoutClosesConnections() {
    const Server server({{"readTimeout", 300}});
    Client idle(server, "GET / HTTP/1.1\r\n\r\n");
    QCOMPARE(idle.receive(), ok);
    QCOMPARE(idle.state(), QAbstractSocket::UnconnectedState);

    // A header that arrives slowly does not extend the timeout.
    Client slow(server, "GET / HTTP/1.1\r\nX: ");
    const auto isDisconnected = [&slow] {
        slow.write("x");
        return slow.state() == QAbstractSocket::UnconnectedState;
    };
    QVERIFY(slow.waitForConnected(timeoutMs));
    QVERIFY(QTest::qWaitFor(isDisconnected, timeoutMs));
    QCOMPARE(slow.receive(), QByteArray());
}

void TestHttpServer::bodiesAndRequestsExtendTheReadTimeout() {
    const Server server({{"readTimeout", 1000}});
    Client client(server, "POST /body HTTP/1.1\r\nContent-Length: 4\r\n\r\n");
    for (int sent = 0; sent < 4; ++sent) {
        QTest::qWait(350);
        client.write("x");
    }
    QVERIFY(client.receive("xxxx").endsWith("\r\n\r\nxxxx"));
    for (int count = 0; count < 2; ++count) {
        QTest::qWait(600);
        client.received.clear();
        client.write("GET / HTTP/1.1\r\n\r\n");
        QCOMPARE(client.receive(ok), ok);
    }
}

void TestHttpServer::slowReadersReceiveEveryByte() {
    const Server server;
    Client client(server, "GET /large HTTP/1.1\r\n\r\n");
    client.setReadBufferSize(1);
    QTRY_VERIFY(client.bytesAvailable() > 0);
    QTest::qWait(600);  // long enough for the server's send() to return after a part of a piece
    client.setReadBufferSize(0);
    QByteArray expected = "HTTP/1.1 200 OK\r\nContent-Length: 20000000\r\n\r\n";
    for (const QByteArray &piece : largeBody())
        expected += piece;
    QVERIFY(client.receive(expected) == expected);
}

void TestHttpServer::disconnectedClientsFreeTheirHandler_data() {
    QTest::addColumn<QByteArray>("request");
    QTest::addColumn<bool>("hasResponse");
    QTest::newRow("in the first line") << QByteArray("GET / HT") << false;
    QTest::newRow("in the body") << QByteArray("POST / HTTP/1.1\r\nContent-Length: 9\r\n\r\n") << false;
    QTest::newRow("while the first of many responses is sent")
        << QByteArray("GET /large HTTP/1.1\r\n\r\n").repeated(2000) << true;
}

void TestHttpServer::disconnectedClientsFreeTheirHandler() {
    QFETCH(const QByteArray, request);
    QFETCH(const bool, hasResponse);
    const Server server({{"maxThreads", 1}, {"readTimeout", 10 * timeoutMs}});
    Client leaving(server, request);
    leaving.setReadBufferSize(1);
    QVERIFY(leaving.waitForBytesWritten(timeoutMs));
    QTRY_VERIFY(leaving.bytesAvailable() > 0 || !hasResponse);
    leaving.abort();
    const auto isServed = [&server] { return Client(server, "GET / HTTP/1.1\r\n\r\n").receive(ok) == ok; };
    QVERIFY(QTest::qWaitFor(isServed, timeoutMs));
    QCOMPARE(server.handler.requestCount.load(), hasResponse ? 2 : 1);
}

void TestHttpServer::closeEndsAllConnections() {
    const Server server({{"readTimeout", 10 * timeoutMs}});
    Client writing(server, "GET / HT");
    Client notReading(server, QByteArray("GET /large HTTP/1.1\r\n\r\n").repeated(2000));
    notReading.setReadBufferSize(1);
    QTRY_VERIFY(notReading.bytesAvailable() > 0);
    QElapsedTimer duration;
    duration.start();
    server.listener->close();
    QVERIFY2(duration.elapsed() < timeoutMs, qPrintable(QString::number(duration.elapsed())));
    QVERIFY(!server.listener->isListening());
    QCOMPARE(writing.receive(), QByteArray());
    QCOMPARE(writing.state(), QAbstractSocket::UnconnectedState);
    server.listener->listen();
    Client client(server, "GET / HTTP/1.1\r\n\r\n");
    QCOMPARE(client.receive(ok), ok);
}

void TestHttpServer::acceptingResumesAfterAnError() {
    const Server server;
    // QTcpServer does the same when it cannot accept a connection.
    server.listener->pauseAccepting();
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^HttpListener: Cannot accept a connection: "));
    Q_EMIT server.listener->acceptError(QAbstractSocket::SocketResourceError);
    Client client(server, "GET / HTTP/1.1\r\n\r\n");
    QCOMPARE(client.receive(ok), ok);
}

void TestHttpServer::listeningAddresses() {
    QCOMPARE(Server({{"host", ""}}).listener->serverAddress(), QHostAddress(QHostAddress::Any));
    const Server first;
    QCOMPARE(first.listener->serverAddress(), QHostAddress(QHostAddress::LocalHost));
    const quint16 port = first.listener->serverPort();
    const auto text = QString("HttpListener: Cannot bind on port %1: The bound address is already in use").arg(port);
    QTest::ignoreMessage(QtCriticalMsg, qPrintable(text));
    const Server second({{"port", port}});
    QVERIFY(!second.listener->isListening());
    first.listener->close();
    second.listener->listen();
    QVERIFY(second.listener->isListening());
}

void TestHttpServer::missingCertificateDisablesTls() {
    QTest::ignoreMessage(QtCriticalMsg,
                         QRegularExpression("^HttpConnectionHandlerPool: cannot open sslCertFile .+/none\\.pem$"));
    const Server server({{"sslKeyFile", "key.pem"}, {"sslCertFile", "none.pem"}});
    Client client(server, "GET / HTTP/1.1\r\n\r\n");
    QCOMPARE(client.receive(ok), ok);
}

OCELA_TEST(TestHttpServer)
#include "tst_http_server.moc"
