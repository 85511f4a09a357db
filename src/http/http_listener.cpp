#include "http/http_listener.h"

#include "http/http_connection_handler.h"
#include "http/http_connection_handler_pool.h"
#include "http/http_log.h"
#include "http/system_calls.h"

#include <QTcpSocket>
#include <QTimer>

namespace {

const char tooManyConnections[] =
    "HTTP/1.1 503 too many connections\r\nConnection: close\r\n\r\nToo many connections\r\n";
/// The delay before the next accept after an error, which is usually a lack of file descriptors.
constexpr int acceptRetryMs = 100;
/// How long a refused connection is drained.
constexpr int lingerMs = 1000;
/// The maximum number of refused connections that are drained at a time.
constexpr int maxLingeringClients = 50;

}  // namespace

HttpListener::HttpListener(QSettings *settings, HttpRequestHandler *requestHandler, QObject *parent)
    : QTcpServer(parent), settings_(settings), requestHandler_(requestHandler) {
    qRegisterMetaType<tSocketDescriptor>("tSocketDescriptor");
    connect(this, &QTcpServer::acceptError, this, [this] {
        qCWarning(lcHttp, "HttpListener: Cannot accept a connection: %s", qUtf8Printable(errorString()));
        QTimer::singleShot(acceptRetryMs, this, [this] {
            if (isListening())
                resumeAccepting();
        });
    });
    listen();
}

HttpListener::~HttpListener() {
    close();
    qCDebug(lcHttp, "HttpListener: destroyed");
}

void HttpListener::listen() {
    if (!pool_)
        pool_ = std::make_unique<HttpConnectionHandlerPool>(settings_, requestHandler_);
    const QString host = settings_.text("host");
    const auto port = static_cast<quint16>(settings_.number("port", 0));
    QTcpServer::listen(host.isEmpty() ? QHostAddress(QHostAddress::Any) : QHostAddress(host), port);
    if (!isListening()) {
        qCCritical(lcHttp, "HttpListener: Cannot bind on port %i: %s", port, qUtf8Printable(errorString()));
        return;
    }
    system_calls::raiseBacklog(socketDescriptor());
    qCDebug(lcHttp, "HttpListener: Listening on port %i", serverPort());
}

void HttpListener::close() {
    QTcpServer::close();
    qCDebug(lcHttp, "HttpListener: closed");
    pool_.reset();
}

void HttpListener::incomingConnection(tSocketDescriptor socketDescriptor) {
    HttpConnectionHandler *handler = pool_ ? pool_->getConnectionHandler() : nullptr;
    if (handler)
        handler->handleConnection(socketDescriptor);
    else
        refuse(socketDescriptor);
}

void HttpListener::refuse(tSocketDescriptor socketDescriptor) {
    qCDebug(lcHttp, "HttpListener: Too many incoming connections");
    auto *socket = new QTcpSocket(this);
    if (!socket->setSocketDescriptor(socketDescriptor)) {
        delete socket;
        return;
    }
    connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    socket->write(tooManyConnections);
    if (findChildren<QTcpSocket *>().size() > maxLingeringClients) {
        socket->disconnectFromHost();
        return;
    }
    // Closing a socket with unread data resets the connection, and the client could lose the response.
    socket->flush();
    system_calls::shutdownWriting(socketDescriptor);
    connect(socket, &QTcpSocket::readyRead, socket, [socket] { socket->readAll(); });
    QTimer::singleShot(lingerMs, socket, &QTcpSocket::abort);
}
