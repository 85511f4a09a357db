#include "http/http_connection_handler.h"

#include "http/byte_text.h"
#include "http/http_log.h"
#include "http/http_request_handler.h"
#include "http/http_response.h"
#include "http/http_server_context.h"
#include "http/http_settings.h"
#include "http/plain_stream.h"
#include "http/tls_stream.h"

#include <exception>
#include <utility>

using byte_text::equalsIgnoringCase;

namespace {

constexpr int defaultReadTimeoutMs = 10000;
constexpr int defaultHeaderTimeoutMs = 30000;
constexpr int defaultRateWindowMs = 30000;
constexpr int defaultMinBytesPerSecond = 1024;
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

bool keepsOpen(const HttpResponse &response) {
    const QMap<QByteArray, QByteArray> &headers = response.getHeaders();
    return !equalsIgnoringCase(headers.value("Connection"), "close") &&
           (response.endsWithHeaders() || isFramed(headers));
}

std::atomic<int> leftThreads{0};

bool isFinal(HttpRequest::RequestStatus status) {
    return status >= HttpRequest::complete;
}

}  // namespace

HttpConnectionHandler::HttpConnectionHandler(std::shared_ptr<HttpServerContext> context)
    : context_(std::move(context)) {}

HttpConnectionHandler::~HttpConnectionHandler() = default;

std::shared_ptr<HttpConnectionHandler> HttpConnectionHandler::start(std::shared_ptr<HttpServerContext> context) {
    auto handler = std::make_shared<HttpConnectionHandler>(std::move(context));
    handler->thread_ = std::thread([handler] { handler->run(); });
    return handler;
}

void HttpConnectionHandler::handleConnection(UniqueSocket socket) {
    const std::lock_guard<std::mutex> lock(mutex_);
    busy_ = true;
    pendingConnection_ = std::move(socket);
    changed_.notify_all();
}

void HttpConnectionHandler::requestStop() {
    const std::lock_guard<std::mutex> lock(mutex_);
    stopping_ = true;
    changed_.notify_all();
}

void HttpConnectionHandler::waitForEnd(std::chrono::steady_clock::time_point deadline) {
    std::unique_lock<std::mutex> lock(mutex_);
    left_ = !changed_.wait_until(lock, deadline, [this] { return ended_; });
    if (left_) {
        ++leftThreads;
        thread_.detach();
        qCWarning(lcHttp, "HttpConnectionHandler: a request is still running and is left behind");
        return;
    }
    lock.unlock();
    thread_.join();
}

int HttpConnectionHandler::leftThreadCount() {
    return leftThreads;
}

void HttpConnectionHandler::run() noexcept {
    system_calls::prepareThread("HTTP handler");
    while (std::optional<UniqueSocket> connection = nextConnection())
        serve(std::move(*connection));
    const std::lock_guard<std::mutex> lock(mutex_);
    ended_ = true;
    if (left_)
        --leftThreads;
    changed_.notify_all();
}

std::optional<UniqueSocket> HttpConnectionHandler::nextConnection() {
    std::unique_lock<std::mutex> lock(mutex_);
    changed_.wait(lock, [this] { return pendingConnection_ || stopping_; });
    return std::exchange(pendingConnection_, std::nullopt);
}

void HttpConnectionHandler::serve(UniqueSocket socket) noexcept {
    try {
        serveRequests(std::move(socket));
    } catch (const std::exception &error) {
        http_log::failure("HttpConnectionHandler: closing the connection", error.what());
    }
    currentRequest_.reset();
    socket_.reset();
    busy_ = false;
}

void HttpConnectionHandler::serveRequests(UniqueSocket socket) {
    socket_ = openStream(std::move(socket));
    if (!socket_)
        return;
    peerAddress_ = socket_->peerAddress();
    readRules();
    restartReadTimer();
    while (receive() && read()) {
    }
}

std::unique_ptr<ByteStream> HttpConnectionHandler::openStream(UniqueSocket socket) const {
    if (context_->sslConfiguration)
        return TlsStream::open(std::move(socket), *context_->sslConfiguration, stopping_);
    return PlainStream::open(std::move(socket), stopping_);
}

void HttpConnectionHandler::readRules() {
    const HttpSettings &settings = context_->settings;
    timeouts_.headerMs = settings.number(QStringLiteral("headerTimeout"), defaultHeaderTimeoutMs);
    const int windowMs = qMax(0, settings.number(QStringLiteral("rateWindow"), defaultRateWindowMs));
    const qint64 perSecond = settings.number(QStringLiteral("minBytesPerSecond"), defaultMinBytesPerSecond);
    timeouts_.rateWindow = std::chrono::milliseconds(windowMs);
    timeouts_.minWindowBytes = perSecond * windowMs / 1000;
}

void HttpConnectionHandler::restartReadTimer() {
    timeouts_.readMs = context_->settings.number(QStringLiteral("readTimeout"), defaultReadTimeoutMs);
    readTimer_.setRemainingTime(timeouts_.readMs);
}

/// Waits for data. Returns false if the connection must be closed without a response, for example after the read
/// timeout.
bool HttpConnectionHandler::receive() {
    for (;;) {
        const auto begin = TransferRate::Clock::now();
        const auto capacity = static_cast<qint64>(buffer_.size());
        const qint64 count = socket_->read(buffer_.data(), capacity, receiveDeadline());
        if (isReceivingBody()) {
            bodyBytes_ += qMax<qint64>(0, count);
            bodyRate_.addWait(begin, [this] { return bodyBytes_; });
        }
        if (count < 0 || (isReceivingBody() && bodyRate_.isTooSlow()))
            return false;
        if (count > 0) {
            input_ = HttpInput(std::string_view(buffer_.data(), static_cast<std::size_t>(count)), peerAddress_);
            return true;
        }
        if (readTimer_.hasExpired() || !isReceivingBody())
            return false;
    }
}

bool HttpConnectionHandler::isReceivingBody() const {
    return currentRequest_ && currentRequest_->getStatus() == HttpRequest::waitForBody;
}

QDeadlineTimer HttpConnectionHandler::receiveDeadline() const {
    if (!currentRequest_)
        return readTimer_;
    return std::min(readTimer_, isReceivingBody() ? QDeadlineTimer(bodyRate_.msLeft()) : headerTimer_);
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
    if (!currentRequest_) {
        currentRequest_.emplace(context_->settings, &context_->requestMemory);
        headerTimer_.setRemainingTime(timeouts_.headerMs);
        bodyBytes_ = 0;
        bodyRate_ = TransferRate();
        bodyRate_.restart(timeouts_.rateWindow, timeouts_.minWindowBytes);
    }
    std::optional<WorkSlots::Slot> slot;
    if (isReceivingBody())
        slot.emplace(context_->bodySlots, stopping_);
    while (!input_.isEmpty() && !isFinal(currentRequest_->getStatus()))
        currentRequest_->readFromSocket(input_);
    // Each part of a body restarts the timeout, so that a long upload does not time out.
    if (isReceivingBody())
        readTimer_.setRemainingTime(timeouts_.readMs);
}

/// Serves the current request. Returns false if the connection must be closed.
bool HttpConnectionHandler::serveRequest() {
    HttpResponse response(socket_.get());
    socket_->requireReadingRate(timeouts_.rateWindow, timeouts_.minWindowBytes);
    const bool closeConnection = wantsClose(*currentRequest_);
    if (closeConnection)
        response.setHeader("Connection", "close");
    const bool completed = callService(response);
    if (completed && !response.hasSentLastPart())
        response.write(QByteArray(), true);
    currentRequest_.reset();
    if (!completed || closeConnection || !keepsOpen(response) || socket_->hasFailed()) {
        socket_->shutdownWriting();
        return false;
    }
    if (stopping_)
        return false;
    restartReadTimer();
    return true;
}

/// Returns false if an exception has cut off the response. The client must not take the sent part for the whole body.
bool HttpConnectionHandler::callService(HttpResponse &response) {
    try {
        context_->requestHandler->service(*currentRequest_, response);
    } catch (...) {
        // Intended: a response that has not begun is completed as if the call had returned.
        return !response.hasSentHeaders() || response.hasSentLastPart();
    }
    return true;
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
