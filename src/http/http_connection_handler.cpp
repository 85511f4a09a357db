#include "http/http_connection_handler.h"

#include "http/byte_text.h"
#include "http/http_request_handler.h"
#include "http/http_response.h"
#include "http/http_settings.h"
#include "http/plain_stream.h"
#include "http/tls_stream.h"

#include <utility>

using byte_text::sameIgnoringCase;

namespace {

constexpr int defaultReadTimeoutMs = 10000;
/// How long a client that is turned away in the middle of its request may take to notice.
constexpr int goodbyeMs = 1000;

const char tooLarge[] = "HTTP/1.1 413 entity too large\r\nConnection: close\r\n\r\n413 Entity too large\r\n";
const char broken[] = "HTTP/1.1 400 bad request\r\nConnection: close\r\n\r\n400 Bad request\r\n";

/// A client of HTTP/1.0 is not kept even if it asks for it.
bool wantsClose(const HttpRequest &request) {
    return sameIgnoringCase(request.getHeader("Connection"), "close") ||
           sameIgnoringCase(request.getVersion(), "HTTP/1.0");
}

/// Whether the client can tell where the body ends. The names count as they are written.
bool endsByItself(const QMap<QByteArray, QByteArray> &headers) {
    return headers.contains("Content-Length") || sameIgnoringCase(headers.value("Transfer-Encoding"), "chunked");
}

bool keepsOpen(const QMap<QByteArray, QByteArray> &headers) {
    return !sameIgnoringCase(headers.value("Connection"), "close") && endsByItself(headers);
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
    handedOverConnection_ = socketDescriptor;
    handedOver_.notify_one();
}

void HttpConnectionHandler::requestStop() {
    const std::lock_guard<std::mutex> lock(mutex_);
    stopping_ = true;
    handedOver_.notify_one();
}

void HttpConnectionHandler::run() {
    while (const std::optional<tSocketDescriptor> connection = nextConnection())
        serve(*connection);
}

std::optional<tSocketDescriptor> HttpConnectionHandler::nextConnection() {
    std::unique_lock<std::mutex> lock(mutex_);
    handedOver_.wait(lock, [this] { return handedOverConnection_ || stopping_; });
    return std::exchange(handedOverConnection_, std::nullopt);
}

void HttpConnectionHandler::serve(tSocketDescriptor socketDescriptor) {
    socket_ = openStream(socketDescriptor);
    // Intended: a handler that could not take its connection is not given back to the pool.
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

/// Waits for more from the client. False at the end of the connection, also by the time limit, which needs no answer.
bool HttpConnectionHandler::receive() {
    const qint64 count = socket_->read(buffer_.data(), static_cast<qint64>(buffer_.size()), readTimer_);
    if (count <= 0)
        return false;
    input_ = HttpInput(std::string_view(buffer_.data(), static_cast<std::size_t>(count)), peerAddress_);
    return true;
}

/// Serves the requests that end within what has arrived. False when the connection has been ended.
bool HttpConnectionHandler::read() {
    while (!input_.isEmpty() && !stopping_) {
        feedRequest();
        switch (currentRequest_->getStatus()) {
            case HttpRequest::complete:
                if (!answerRequest())
                    return false;
                break;
            case HttpRequest::abortSize:
                refuseRequest(tooLarge);
                return false;
            case HttpRequest::abortBroken:
                refuseRequest(broken);
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
        // A long upload is no silence.
        if (currentRequest_->getStatus() == HttpRequest::waitForBody)
            restartReadTimer();
    }
}

/// Answers the current request. False when that was the last one of the connection.
bool HttpConnectionHandler::answerRequest() {
    HttpResponse response(socket_.get());
    const bool closeConnection = wantsClose(*currentRequest_);
    if (closeConnection)
        response.setHeader("Connection", "close");
    callService(response);
    if (!response.hasSentLastPart())
        response.write(QByteArray(), true);
    currentRequest_.reset();
    if (closeConnection || !keepsOpen(response.getHeaders()) || socket_->isGone()) {
        socket_->endWriting();
        return false;
    }
    restartReadTimer();
    return true;
}

void HttpConnectionHandler::callService(HttpResponse &response) {
    try {
        requestHandler_->service(*currentRequest_, response);
    } catch (...) {
        // Intended: whatever the handler threw, the response is finished and the connection goes on.
    }
}

/// Turns a client away that may be in the middle of sending. The connection stays until the client has noticed: closed
/// at once, its system would drop the answer.
void HttpConnectionHandler::refuseRequest(const QByteArray &answer) {
    socket_->write({answer});
    socket_->endWriting();
    const QDeadlineTimer limit(goodbyeMs);
    while (socket_->read(buffer_.data(), static_cast<qint64>(buffer_.size()), limit) > 0) {
    }
}

void HttpConnectionHandler::restartReadTimer() {
    readTimer_.setRemainingTime(settings_.number(QStringLiteral("readTimeout"), defaultReadTimeoutMs));
}
