#include "http/http_listener.h"

#include "http/http_connection_handler.h"
#include "http/http_connection_handler_pool.h"
#include "http/http_log.h"
#include "http/socket_calls.h"

#include <QTcpSocket>
#include <QTimer>

namespace {

const char tooManyConnections[] =
    "HTTP/1.1 503 too many connections\r\nConnection: close\r\n\r\nToo many connections\r\n";
/// How long the system gets to recover after a connection could not be accepted, for want of descriptors as a rule.
constexpr int recoveryMs = 100;
/// How long clients that are turned away may take to notice, and how many of them at a time.
constexpr int goodbyeMs = 1000;
constexpr int mostGoodbyes = 50;

}  // namespace

HttpListener::HttpListener(QSettings *settings, HttpRequestHandler *requestHandler, QObject *parent)
    : QTcpServer(parent), settings_(settings), requestHandler_(requestHandler) {
    qRegisterMetaType<tSocketDescriptor>("tSocketDescriptor");
    connect(this, &QTcpServer::acceptError, this, [this] {
        qCWarning(lcHttp, "HttpListener: Cannot accept a connection: %s", qUtf8Printable(errorString()));
        QTimer::singleShot(recoveryMs, this, [this] {
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
    socket_calls::lengthenBacklog(socketDescriptor());
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
    if (findChildren<QTcpSocket *>().size() > mostGoodbyes) {
        socket->disconnectFromHost();
        return;
    }
    // Closed before it has sent its request, the client would see an error instead of the answer.
    socket->flush();
    socket_calls::endSending(socketDescriptor);
    connect(socket, &QTcpSocket::readyRead, socket, [socket] { socket->readAll(); });
    QTimer::singleShot(goodbyeMs, socket, &QTcpSocket::abort);
}
