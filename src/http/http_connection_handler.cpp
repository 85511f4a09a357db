#include "http/http_connection_handler.h"

#include "http/byte_text.h"
#include "http/http_request_handler.h"
#include "http/http_response.h"
#include "http/http_settings.h"
#include "http/plain_stream.h"
#include "http/tls_stream.h"

#include <utility>

using byte_text::equalsIgnoringCase;

namespace {

constexpr int defaultReadTimeoutMs = 10000;
/// How long a connection is drained after a request is refused.
constexpr int lingerMs = 1000;

const char tooLarge[] = "HTTP/1.1 413 entity too large\r\nConnection: close\r\n\r\n413 Entity too large\r\n";
const char broken[] = "HTTP/1.1 400 bad request\r\nConnection: close\r\n\r\n400 Bad request\r\n";
const char busy[] =
    "HTTP/1.1 503 busy\r\nConnection: close\r\nRetry-After: 1\r\n\r\nThe memory for requests is in use. Try again.\r\n";

/// HTTP/1.0 connections are closed even if the client asks for keep-alive.
bool wantsClose(const HttpRequest &request) {
    return equalsIgnoringCase(request.getHeader("Connection"), "close") ||
           equalsIgnoringCase(request.getVersion(), "HTTP/1.0");
}

/// Returns whether the client can find the end of the body. Header names are compared exactly.
bool isFramed(const QMap<QByteArray, QByteArray> &headers) {
    return headers.contains("Content-Length") || equalsIgnoringCase(headers.value("Transfer-Encoding"), "chunked");
}

bool keepsOpen(const QMap<QByteArray, QByteArray> &headers) {
    return !equalsIgnoringCase(headers.value("Connection"), "close") && isFramed(headers);
}

bool isFinal(HttpRequest::RequestStatus status) {
    return status >= HttpRequest::complete;
}

}  // namespace

HttpConnectionHandler::HttpConnectionHandler(const HttpSettings &settings, HttpRequestHandler *requestHandler,
                                             const QSslConfiguration *sslConfiguration)
    : settings_(settings),
      requestHandler_(requestHandler),
      sslConfiguration_(sslConfiguration),
      thread_([this] { run(); }) {}

HttpConnectionHandler::~HttpConnectionHandler() {
    requestStop();
    thread_.join();
}

void HttpConnectionHandler::handleConnection(tSocketDescriptor socketDescriptor) {
    const std::lock_guard<std::mutex> lock(mutex_);
    busy_ = true;
    pendingConnection_ = socketDescriptor;
    wakeUp_.notify_one();
}

void HttpConnectionHandler::requestStop() {
    const std::lock_guard<std::mutex> lock(mutex_);
    stopping_ = true;
    wakeUp_.notify_one();
}

void HttpConnectionHandler::run() {
    while (const std::optional<tSocketDescriptor> connection = nextConnection())
        serve(*connection);
}

std::optional<tSocketDescriptor> HttpConnectionHandler::nextConnection() {
    std::unique_lock<std::mutex> lock(mutex_);
    wakeUp_.wait(lock, [this] { return pendingConnection_ || stopping_; });
    return std::exchange(pendingConnection_, std::nullopt);
}

void HttpConnectionHandler::serve(tSocketDescriptor socketDescriptor) {
    socket_ = openStream(socketDescriptor);
    // Intended: a handler that cannot open its connection stays busy.
    if (!socket_)
        return;
    peerAddress_ = socket_->peerAddress();
    restartReadTimer();
    while (receive() && read()) {
    }
    currentRequest_.reset();
    socket_.reset();
    busy_ = false;
}

std::unique_ptr<ByteStream> HttpConnectionHandler::openStream(tSocketDescriptor socketDescriptor) const {
    if (sslConfiguration_)
        return TlsStream::open(socketDescriptor, *sslConfiguration_, stopping_);
    return PlainStream::open(socketDescriptor, stopping_);
}

/// Waits for data. Returns false if the connection must be closed without a response, for example after the read
/// timeout.
bool HttpConnectionHandler::receive() {
    const qint64 count = socket_->read(buffer_.data(), static_cast<qint64>(buffer_.size()), readTimer_);
    if (count <= 0)
        return false;
    input_ = HttpInput(std::string_view(buffer_.data(), static_cast<std::size_t>(count)), peerAddress_);
    return true;
}

/// Serves all complete requests in the received data. Returns false if the connection must be closed.
bool HttpConnectionHandler::read() {
    while (!input_.isEmpty() && !stopping_) {
        feedRequest();
        switch (currentRequest_->getStatus()) {
            case HttpRequest::complete:
                if (!serveRequest())
                    return false;
                break;
            case HttpRequest::abortSize:
                refuseRequest(tooLarge);
                return false;
            case HttpRequest::abortBroken:
                refuseRequest(broken);
                return false;
            case HttpRequest::abortBusy:
                refuseRequest(busy);
                return false;
            case HttpRequest::waitForRequest:
            case HttpRequest::waitForHeader:
            case HttpRequest::waitForBody:
                break;
        }
    }
    return true;
}

void HttpConnectionHandler::feedRequest() {
    if (!currentRequest_)
        currentRequest_.emplace(settings_);
    while (!input_.isEmpty() && !isFinal(currentRequest_->getStatus())) {
        currentRequest_->readFromSocket(input_);
        // Each part of a body restarts the timeout, so that a long upload does not time out.
        if (currentRequest_->getStatus() == HttpRequest::waitForBody)
            restartReadTimer();
    }
}

/// Serves the current request. Returns false if the connection must be closed.
bool HttpConnectionHandler::serveRequest() {
    HttpResponse response(socket_.get());
    const bool closeConnection = wantsClose(*currentRequest_);
    if (closeConnection)
        response.setHeader("Connection", "close");
    callService(response);
    if (!response.hasSentLastPart())
        response.write(QByteArray(), true);
    currentRequest_.reset();
    if (closeConnection || !keepsOpen(response.getHeaders()) || socket_->hasFailed()) {
        socket_->shutdownWriting();
        return false;
    }
    restartReadTimer();
    return true;
}

void HttpConnectionHandler::callService(HttpResponse &response) {
    try {
        requestHandler_->service(*currentRequest_, response);
    } catch (...) {
        // Intended: the response is completed as if the call had returned.
    }
}

/// Sends an error response to a client that may still be sending. Then drains the connection for up to lingerMs:
/// closing a socket with unread data resets the connection, and the client could lose the response.
void HttpConnectionHandler::refuseRequest(const QByteArray &response) {
    socket_->write({response});
    socket_->shutdownWriting();
    const QDeadlineTimer deadline(lingerMs);
    while (socket_->read(buffer_.data(), static_cast<qint64>(buffer_.size()), deadline) > 0) {
    }
}

void HttpConnectionHandler::restartReadTimer() {
    readTimer_.setRemainingTime(settings_.number(QStringLiteral("readTimeout"), defaultReadTimeoutMs));
}
