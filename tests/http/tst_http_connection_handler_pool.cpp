#include "http/http_connection_handler.h"
#include "http/http_connection_handler_pool.h"
#include "http/http_request_handler.h"
#include "http/http_server_context.h"
#include "support/test_main.h"

#include <QSet>
#include <QSettings>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>

/// Tests how the pool lends and removes handlers.
class TestHttpConnectionHandlerPool : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyHandlerIsLentOnce();
    void oneIdleHandlerIsRemovedPerCleanup();
};

namespace {

struct Pool {
    QTemporaryDir folder;
    QSettings values{folder.filePath("server.ini"), QSettings::IniFormat};
    HttpConnectionHandlerPool pool{
        std::make_shared<HttpServerContext>(&values, std::make_shared<HttpRequestHandler>())};
};

/// Accepts connections for handlers of a pool.
class Acceptor : public QTcpServer {
public:
    explicit Acceptor(HttpConnectionHandlerPool &pool) : pool_(pool) { listen(QHostAddress::LocalHost); }

    QList<HttpConnectionHandler *> handlers;

protected:
    void incomingConnection(qintptr socketDescriptor) override {
        handlers.append(pool_.getConnectionHandler());
        handlers.last()->handleConnection(UniqueSocket(socketDescriptor));
    }

private:
    HttpConnectionHandlerPool &pool_;
};

/// The pool sizes that removals have logged.
QStringList loggedSizes;

void storePoolSize(QtMsgType, const QMessageLogContext &, const QString &text) {
    if (text.startsWith("HttpConnectionHandlerPool: Removed connection handler (0x"))
        loggedSizes << text.section(' ', -1);
}

}  // namespace

void TestHttpConnectionHandlerPool::everyHandlerIsLentOnce() {
    const int defaultMaxThreads = 100;
    Pool pool;
    QSet<HttpConnectionHandler *> lent;
    const int forLocalClients = 20;
    for (int i = 0; i < defaultMaxThreads - forLocalClients; ++i)
        lent.insert(pool.pool.getConnectionHandler(HttpConnectionHandlerPool::Peer::remote));
    QVERIFY(!pool.pool.getConnectionHandler(HttpConnectionHandlerPool::Peer::remote));
    for (int i = 0; i < forLocalClients; ++i)
        lent.insert(pool.pool.getConnectionHandler());
    QCOMPARE(lent.size(), defaultMaxThreads);
    QVERIFY(!lent.contains(nullptr));
    QVERIFY(!pool.pool.getConnectionHandler());
}

void TestHttpConnectionHandlerPool::oneIdleHandlerIsRemovedPerCleanup() {
    Pool pool;
    Acceptor acceptor(pool.pool);
    {
        QTcpSocket clients[3];
        for (QTcpSocket &client : clients)
            client.connectToHost(acceptor.serverAddress(), acceptor.serverPort());
        QTRY_COMPARE(acceptor.handlers.size(), 3);
    }
    for (HttpConnectionHandler *handler : qAsConst(acceptor.handlers))
        QTRY_VERIFY(!handler->isBusy());
    const auto previous = qInstallMessageHandler(storePoolSize);
    for (int i = 0; i < 3; ++i) {
        loggedSizes << "cleanup";
        QMetaObject::invokeMethod(&pool.pool, "cleanup");
    }
    qInstallMessageHandler(previous);
    QCOMPARE(loggedSizes, (QStringList{"cleanup", "2", "cleanup", "1", "cleanup"}));
}

OCELA_TEST(TestHttpConnectionHandlerPool)
#include "tst_http_connection_handler_pool.moc"
