#include "http/http_listener.h"
#include "http/http_request.h"
#include "http/http_request_handler.h"
#include "http/http_response.h"
#include "missing_ipv6.h"
#include "support/test_main.h"

#include <QElapsedTimer>
#include <QLoggingCategory>
#include <QRegularExpression>
#include <QScopeGuard>
#include <QSettings>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTemporaryFile>
#include <QTest>
#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <thread>

namespace {

constexpr int timeoutMs = test_support::longWaitMs;
constexpr int patienceMs = 1500;
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

/// Makes a request hang until it is opened.
class Gate {
public:
    void open() {
        const std::lock_guard<std::mutex> lock(mutex_);
        open_ = true;
        opened_.notify_all();
    }
    void pass() {
        std::unique_lock<std::mutex> lock(mutex_);
        opened_.wait(lock, [this] { return open_; });
    }

private:
    std::mutex mutex_;
    std::condition_variable opened_;
    bool open_ = false;
};

/// Selects the response by the path, and counts the requests.
class Handler : public HttpRequestHandler {
public:
    void service(HttpRequest &request, HttpResponse &response) override {
        ++requestCount;
        const QByteArray path = request.getPath();
        if (path == "/default")
            return HttpRequestHandler::service(request, response);
        if (path.startsWith("/throws")) {
            if (path == "/throws/late")
                response.write("a");
            throw std::runtime_error("not for the client");
        }
        if (path == "/parts") {
            response.write("a");
            response.write("b", true);
        } else if (path == "/unframed") {
            response.setHeader("connection", "close");
            response.setHeader("content-length", 1);
            response.write("a");
        } else if (path == "/body") {
            response.write(request.getBody(), true);
        } else if (path == "/hang") {
            const std::shared_ptr<Gate> held = gate;
            held->pass();
        } else if (path == "/endless") {
            while (response.isWritable())
                response.write(QByteArray(1000, 'x'));
        } else if (path == "/patient") {
            response.allowPauses(std::chrono::milliseconds(patienceMs));
            response.write(largeBody());
        } else if (path.startsWith("/file/")) {
            QFile file(fileName);
            if (file.open(QIODevice::ReadOnly))
                response.writeFile(file, 10, path.mid(6).toLongLong());
        } else if (path == "/large") {
            response.write(largeBody(), true);
        } else if (path != "/silent") {
            response.write("ok", true);
        }
    }

    std::atomic<int> requestCount{0};
    QString fileName;  ///< for "/file/SIZE"
    const std::shared_ptr<Gate> gate = std::make_shared<Gate>();
};

/// A server on a port that the system chooses.
struct Server {
    explicit Server(const QMap<QString, QVariant> &values = {}) {
        settings.setValue("host", "127.0.0.1");
        for (auto value = values.begin(); value != values.end(); ++value)
            settings.setValue(value.key(), value.value());
        listener = std::make_unique<HttpListener>(&settings, handler);
    }

    QTemporaryDir folder;
    QSettings settings{folder.filePath("server.ini"), QSettings::IniFormat};
    const std::shared_ptr<Handler> handler = std::make_shared<Handler>();
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

/// Repeats an attempt that must finish before a timeout of the server, because the machine may stop for longer.
template <typename Attempt>
bool succeedsUnlessInterrupted(Attempt attempt) {
    return QTest::qWaitFor(attempt, timeoutMs);
}

}  // namespace

Q_DECLARE_METATYPE(missing_ipv6::Reason)

/// Tests the server with real connections.
class TestHttpServer : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // Qt Test ignores all messages after the first 2000, and each connection logs some.
    void initTestCase() { QLoggingCategory::setFilterRules("ocela.http.debug=false"); }
    void cleanupTestCase() { QLoggingCategory::setFilterRules({}); }

    void exchanges_data();
    void exchanges();
    void readTimeoutClosesConnections();
    void slowClientsAreDisconnected_data();
    void slowClientsAreDisconnected();
    void requestsThatDoNotFitAreRefused();
    void bodiesAndRequestsExtendTheReadTimeout();
    void slowReadersReceiveEveryByte();
    void disconnectedClientsFreeTheirHandler_data();
    void disconnectedClientsFreeTheirHandler();
    void filesAreSent_data();
    void filesAreSent();
    void closeEndsAllConnections();
    void aHangingRequestIsLeftBehind();
    void listeningAddresses_data();
    void listeningAddresses();
    void ipv6MayBeMissing_data();
    void ipv6MayBeMissing();
    void hostsCanChange();
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
    row("an exception in the body leaves it incomplete", "GET /throws/late HTTP/1.1\r\n\r\nGET / HTTP/1.1\r\n\r\n",
        "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n1\r\na\r\n", true);
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
    const auto isAnsweredAndClosed = [&server] {
        Client idle(server, "GET / HTTP/1.1\r\n\r\n");
        return idle.receive() == ok && idle.state() == QAbstractSocket::UnconnectedState;
    };
    QVERIFY(succeedsUnlessInterrupted(isAnsweredAndClosed));

    // A header that arrives slowly does not extend the timeout.
    Client slow(server, "GET / HTTP/1.1\r\nX: ");
    // Asks the system, because a socket that writes all the time can miss the notification of the end under Wine.
    const auto isDisconnected = [&slow] {
        slow.write("x");
        (void)slow.waitForReadyRead(1);
        return slow.state() == QAbstractSocket::UnconnectedState;
    };
    QVERIFY(slow.waitForConnected(timeoutMs));
    QVERIFY(QTest::qWaitFor(isDisconnected, timeoutMs));
    QCOMPARE(slow.receive(), QByteArray());
}

void TestHttpServer::slowClientsAreDisconnected_data() {
    QTest::addColumn<QByteArray>("request");
    QTest::addColumn<QByteArray>("drip");
    QTest::addColumn<int>("minMs");
    QTest::newRow("headers") << QByteArray("GET / HTTP/1.1\r\n") << QByteArray("A: b\r\n") << 400;
    QTest::newRow("body") << QByteArray("POST / HTTP/1.1\r\nContent-Length: 1000000\r\n\r\n") << QByteArray("x") << 400;
    QTest::newRow("chunks") << QByteArray("POST / HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\n")
                            << QByteArray("1\r\nx\r\n") << 400;
    QTest::newRow("response") << QByteArray("GET /large HTTP/1.1\r\n\r\n") << QByteArray() << 400;
    QTest::newRow("response in parts") << QByteArray("GET /endless HTTP/1.1\r\n\r\n") << QByteArray() << 400;
    QTest::newRow("stream that may pause") << QByteArray("GET /patient HTTP/1.1\r\n\r\n") << QByteArray() << patienceMs;
}

void TestHttpServer::slowClientsAreDisconnected() {
    QFETCH(const QByteArray, request);
    QFETCH(const QByteArray, drip);
    const Server server(
        {{"maxThreads", 1}, {"readTimeout", 10 * timeoutMs}, {"headerTimeout", 400}, {"rateWindow", 400}});
    QFETCH(const int, minMs);
    QElapsedTimer duration;
    duration.start();
    Client slow(server, request);
    slow.setReadBufferSize(1);
    QVERIFY(slow.waitForConnected(timeoutMs));
    const auto othersAreServed = [&] {
        slow.write(drip);
        return Client(server, "GET / HTTP/1.1\r\n\r\n").receive(ok) == ok;
    };
    QVERIFY(QTest::qWaitFor(othersAreServed, timeoutMs));
    QVERIFY2(duration.elapsed() >= minMs, qPrintable(QString::number(duration.elapsed())));
}

void TestHttpServer::requestsThatDoNotFitAreRefused() {
    const Server server({{"maxTotalRequestBytes", 100000}});
    const auto post = [](const QByteArray &path, int bodyBytes) {
        return "POST " + path + " HTTP/1.1\r\nConnection: close\r\nContent-Type: text/plain\r\nContent-Length: " +
               QByteArray::number(bodyBytes) + "\r\n\r\n" + QByteArray(bodyBytes, 'x');
    };
    Client holding(server, post("/hang", 90000));
    QTRY_COMPARE(server.handler->requestCount.load(), 1);
    const QByteArray refusal =
        "HTTP/1.1 503 busy\r\nConnection: close\r\nRetry-After: 1\r\n\r\nThe memory for requests is in use. Try "
        "again.\r\n";
    QTest::ignoreMessage(QtWarningMsg, "HttpRequest: the memory for requests is in use");
    QCOMPARE(Client(server, post("/", 50000)).receive(), refusal);
    server.handler->gate->open();
    QVERIFY(holding.receive().startsWith("HTTP/1.1 200 OK"));
    QVERIFY(Client(server, post("/", 50000)).receive().endsWith("ok"));
}

void TestHttpServer::bodiesAndRequestsExtendTheReadTimeout() {
    const Server server({{"readTimeout", 1000}});
    const auto staysOpen = [&server] {
        Client client(server, "POST /body HTTP/1.1\r\nContent-Length: 4\r\n\r\n");
        for (int sent = 0; sent < 4; ++sent) {
            QTest::qWait(350);
            client.write("x");
        }
        bool isServed = client.receive("xxxx").endsWith("\r\n\r\nxxxx");
        for (int count = 0; count < 2 && isServed; ++count) {
            QTest::qWait(600);
            client.received.clear();
            client.write("GET / HTTP/1.1\r\n\r\n");
            isServed = client.receive(ok) == ok;
        }
        return isServed;
    };
    QVERIFY(succeedsUnlessInterrupted(staysOpen));
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
    QCOMPARE(server.handler->requestCount.load(), hasResponse ? 2 : 1);
}

void TestHttpServer::filesAreSent_data() {
    QTest::addColumn<int>("fileBytes");
    QTest::addColumn<int>("bytes");
    QTest::newRow("part of a file") << 1000 << 500;
    QTest::newRow("no byte") << 1000 << 0;
    QTest::newRow("large file to a client that pauses") << 20000010 << 20000000;
    QTest::newRow("a file that becomes shorter") << 5000 << 20000;
    QTest::newRow("a file that is shorter than the offset") << 5 << 20;
}

void TestHttpServer::filesAreSent() {
    QFETCH(const int, fileBytes);
    QFETCH(const int, bytes);
    QByteArray contents;
    for (int i = 0; contents.size() < fileBytes; ++i)
        contents += QByteArray::number(i);
    contents.truncate(fileBytes);
    const Server server;
    QTemporaryFile file;
    QVERIFY(file.open() && file.write(contents) == fileBytes && file.flush());
    server.handler->fileName = file.fileName();
    const QByteArray size = QByteArray::number(bytes);
    Client client(server, "GET /file/" + size + " HTTP/1.1\r\n\r\n");
    client.setReadBufferSize(1);
    QTRY_VERIFY(client.bytesAvailable() > 0);
    client.setReadBufferSize(0);
    const QByteArray expected = "HTTP/1.1 200 OK\r\nContent-Length: " + size + "\r\n\r\n" + contents.mid(10, bytes);
    const bool complete = fileBytes >= bytes + 10;
    QVERIFY(client.receive(complete ? expected : QByteArray()) == expected);
    QCOMPARE(client.state() == QAbstractSocket::UnconnectedState, !complete);
    if (complete) {
        client.received.clear();
        client.write("GET / HTTP/1.1\r\n\r\n");
        QCOMPARE(client.receive(ok), ok);
    }
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

void TestHttpServer::aHangingRequestIsLeftBehind() {
    auto server = std::make_unique<Server>();
    const std::weak_ptr<Handler> handler = server->handler;
    const std::shared_ptr<Gate> gate = server->handler->gate;
    Client client(*server, "GET /hang HTTP/1.1\r\n\r\n");
    QTRY_COMPARE(server->handler->requestCount.load(), 1);
    QTest::ignoreMessage(QtWarningMsg, "HttpConnectionHandler: a request is still running and is left behind");
    QElapsedTimer duration;
    duration.start();
    server.reset();
    QVERIFY2(duration.elapsed() < timeoutMs / 2, qPrintable(QString::number(duration.elapsed())));
    QCOMPARE(HttpListener::leftThreadCount(), 1);
    QVERIFY(!handler.expired());
    gate->open();
    QTRY_VERIFY(handler.expired());
    QCOMPARE(HttpListener::leftThreadCount(), 0);
}

void TestHttpServer::listeningAddresses_data() {
    QTest::addColumn<QString>("hosts");
    QTest::addColumn<QStringList>("addresses");
    QTest::addColumn<QString>("error");
    const auto row = [](const char *name, const QString &hosts, const QStringList &addresses,
                        const QString &error = {}) { QTest::newRow(name) << hosts << addresses << error; };
    row("all interfaces", "", {"any"});
    row("one address", "127.0.0.1", {"127.0.0.1"});
    row("several addresses", " 127.0.0.1  127.0.0.2 ", {"127.0.0.1", "127.0.0.2"});
    row("an address that this machine does not have", "192.0.2.1 127.0.0.1", {"127.0.0.1"});
    row("only an address that this machine does not have", "192.0.2.1", {}, "The address is not available");
    row("the same address twice", "127.0.0.1 127.0.0.1", {}, "The bound address is already in use");
    row("no address", "127.0.0.1 localhost", {}, "localhost is not an IP address");
}

void TestHttpServer::listeningAddresses() {
    QFETCH(const QString, hosts);
    QFETCH(const QStringList, addresses);
    QFETCH(const QString, error);
    if (!error.isEmpty())
        QTest::ignoreMessage(QtCriticalMsg, qPrintable("HttpListener: Cannot bind on port 0: " + error));
    const Server server({{"host", hosts}});
    QStringList found;
    for (const QHostAddress &address : server.listener->serverAddresses())
        found << (address == QHostAddress(QHostAddress::Any) ? "any" : address.toString());
    QCOMPARE(found, addresses);
    QCOMPARE(server.listener->isListening(), !addresses.isEmpty());
    for (const QString &address : addresses.filter("127")) {
        QTcpSocket client;
        client.connectToHost(address, server.listener->serverPort());
        QVERIFY(client.waitForConnected(timeoutMs));
        client.write("GET / HTTP/1.1\r\n\r\n");
        QTRY_COMPARE_WITH_TIMEOUT(client.bytesAvailable(), ok.size(), timeoutMs);
    }
}

void TestHttpServer::ipv6MayBeMissing_data() {
    QTest::addColumn<missing_ipv6::Reason>("reason");
    QTest::newRow("protocol") << missing_ipv6::Reason::Protocol;
    QTest::newRow("address") << missing_ipv6::Reason::Address;
}

void TestHttpServer::ipv6MayBeMissing() {
    QFETCH(const missing_ipv6::Reason, reason);
    if (!missing_ipv6::simulate(reason))
        QSKIP("needs intercepted system calls");
    const auto restore = qScopeGuard([] { missing_ipv6::simulate(missing_ipv6::Reason::None); });
    const Server server({{"host", "127.0.0.1 ::1"}});
    QCOMPARE(server.listener->serverAddresses(), QList<QHostAddress>{QHostAddress("127.0.0.1")});
    QCOMPARE(Client(server, "GET / HTTP/1.1\r\n\r\n").receive(ok), ok);
}

void TestHttpServer::hostsCanChange() {
    const Server server;
    Client staying(server, "GET / HTTP/1.1\r\n\r\n");
    QCOMPARE(staying.receive(ok), ok);
    const quint16 port = server.listener->serverPort();
    std::thread([&] { server.listener->setHosts({"127.0.0.2"}); }).join();
    QTRY_COMPARE(server.listener->serverAddresses(), QList<QHostAddress>{QHostAddress("127.0.0.2")});
    QCOMPARE(server.listener->serverPort(), port);
    Client outside(server);
    QVERIFY(!outside.waitForConnected(timeoutMs));
    staying.received.clear();
    staying.write("GET / HTTP/1.1\r\n\r\n");
    QCOMPARE(staying.receive(ok), ok);

    QTest::ignoreMessage(QtCriticalMsg, QRegularExpression("^HttpListener: Cannot bind on port"));
    const Server other({{"port", port}, {"host", "127.0.0.2"}});
    QVERIFY(!other.listener->isListening());
    QCOMPARE(other.listener->serverError(), QAbstractSocket::AddressInUseError);
    server.listener->close();
    other.listener->listen();
    QVERIFY(other.listener->isListening());

    QTest::ignoreMessage(QtCriticalMsg, "HttpListener: Cannot bind on port 65536: Ports are numbers from 0 to 65535");
    QVERIFY(!Server({{"port", 65536}}).listener->isListening());
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
