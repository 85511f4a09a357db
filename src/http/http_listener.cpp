#include "http/http_listener.h"

#include "http/http_acceptor.h"
#include "http/http_connection_handler.h"
#include "http/http_connection_handler_pool.h"
#include "http/http_log.h"
#include "http/http_server_context.h"
#include "http/system_calls.h"

#include <QTcpServer>
#include <limits>
#include <system_error>
#include <utility>

namespace {

/// Errors for an address that the machine does not have, for example without IPv6.
bool isMissingAddress(QAbstractSocket::SocketError error) {
    return error == QAbstractSocket::SocketAddressNotAvailableError ||
           error == QAbstractSocket::UnsupportedSocketOperationError;
}

}  // namespace

HttpListener::HttpListener(QSettings *settings, std::shared_ptr<HttpRequestHandler> requestHandler, QObject *parent)
    : QObject(parent), settings_(settings), requestHandler_(std::move(requestHandler)) {
    qRegisterMetaType<tSocketDescriptor>("tSocketDescriptor");
    listen();
}

HttpListener::~HttpListener() {
    close();
    qCDebug(lcHttp, "HttpListener: destroyed");
}

void HttpListener::listen() {
    if (!pool_)
        pool_ = std::make_unique<HttpConnectionHandlerPool>(
            std::make_shared<HttpServerContext>(settings_, requestHandler_));
    startListening(pool_->settings().number("port", 0));
}

void HttpListener::startListening(int port) {
    stopListening();
    const QString host = pool_->settings().text("host");
    bindAll(hosts_.value_or(host.split(' ', Qt::SkipEmptyParts)), port);
    // Queued, so that the owner can complete its construction before the first request.
    QMetaObject::invokeMethod(this, &HttpListener::startAccepting, Qt::QueuedConnection);
    if (isListening())
        qCDebug(lcHttp, "HttpListener: Listening on port %i", serverPort());
    else
        qCCritical(lcHttp, "HttpListener: Cannot bind on port %i: %s", port, qUtf8Printable(errorString_));
}

void HttpListener::bindAll(const QStringList &hosts, int port) {
    if (port < 0 || port > std::numeric_limits<quint16>::max())
        return fail(QAbstractSocket::UnsupportedSocketOperationError,
                    QStringLiteral("Ports are numbers from 0 to 65535"));
    if (hosts.isEmpty()) {
        (void)bind(QHostAddress(QHostAddress::Any), static_cast<quint16>(port));
        return;
    }
    for (const QString &host : hosts) {
        const QHostAddress address(host);
        if (address.isNull())
            return fail(QAbstractSocket::HostNotFoundError, QStringLiteral("%1 is not an IP address").arg(host));
        // If the system chooses the port, all addresses use the same one.
        const int samePort = isListening() ? serverPort() : port;
        if (!bind(address, static_cast<quint16>(samePort)) && !isMissingAddress(error_))
            return fail(error_, errorString_);
    }
}

bool HttpListener::bind(const QHostAddress &address, quint16 port) {
    auto server = std::make_unique<QTcpServer>();
    if (!server->listen(address, port)) {
        error_ = server->serverError();
        errorString_ = server->errorString();
        return false;
    }
    server->pauseAccepting();
    system_calls::raiseBacklog(server->socketDescriptor());
    servers_.push_back(std::move(server));
    return true;
}

void HttpListener::startAccepting() {
    if (!isListening() || acceptor_)
        return;
    std::vector<tSocketDescriptor> descriptors;
    for (const auto &server : servers_)
        descriptors.push_back(server->socketDescriptor());
    try {
        acceptor_ = std::make_unique<HttpAcceptor>(descriptors, *pool_);
    } catch (const std::system_error &error) {
        fail(QAbstractSocket::SocketResourceError, QString::fromLocal8Bit(error.what()));
    }
}

void HttpListener::stopListening() {
    acceptor_.reset();
    servers_.clear();
}

void HttpListener::fail(QAbstractSocket::SocketError error, const QString &reason) {
    stopListening();
    error_ = error;
    errorString_ = reason;
}

void HttpListener::close() {
    stopListening();
    qCDebug(lcHttp, "HttpListener: closed");
    pool_.reset();
}

void HttpListener::setHosts(const QStringList &hosts) {
    QMetaObject::invokeMethod(this, [this, hosts] { changeHosts(hosts); });
}

void HttpListener::changeHosts(const QStringList &hosts) {
    if (std::exchange(hosts_, hosts) == hosts || !pool_)
        return;
    startListening(isListening() ? serverPort() : pool_->settings().number("port", 0));
}

QList<QHostAddress> HttpListener::serverAddresses() const {
    QList<QHostAddress> addresses;
    for (const auto &server : servers_)
        addresses.append(server->serverAddress());
    return addresses;
}

quint16 HttpListener::serverPort() const {
    return isListening() ? servers_.front()->serverPort() : quint16(0);
}

int HttpListener::leftThreadCount() {
    return HttpConnectionHandler::leftThreadCount();
}
