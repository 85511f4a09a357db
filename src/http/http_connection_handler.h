#pragma once

#include "http/byte_stream.h"
#include "http/http_input.h"
#include "http/http_request.h"
#include "http/system_calls.h"

#include <QDeadlineTimer>
#include <array>
#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>

class HttpRequestHandler;
class HttpResponse;
class HttpSettings;
class QSslConfiguration;

/// Serves connections, one at a time, in its own thread. Reads requests, calls the request handler and decides whether
/// the connection stays open. Closes the connection if no complete request arrives within "readTimeout" ms (default
/// 10,000). Each part of a body restarts the timeout.
///
/// The pool creates, lends and destroys handlers. Only handleConnection(), requestStop() and the busy flag are used
/// from other threads.
class HttpConnectionHandler {
public:
    /// All three must outlive the handler. Connections are encrypted if there is an `sslConfiguration`. Throws
    /// std::system_error if no thread can be created.
    HttpConnectionHandler(const HttpSettings &settings, HttpRequestHandler *requestHandler,
                          const QSslConfiguration *sslConfiguration);
    /// Closes an open connection. Waits for the thread, and therefore for a running HttpRequestHandler::service(). Only
    /// response data that the socket accepts without blocking is still sent.
    ~HttpConnectionHandler();
    HttpConnectionHandler(const HttpConnectionHandler &) = delete;
    HttpConnectionHandler &operator=(const HttpConnectionHandler &) = delete;

    /// True from setBusy(), which the pool calls, until the connection is closed.
    [[nodiscard]] bool isBusy() const { return busy_; }
    void setBusy() { busy_ = true; }

    /// Takes ownership of an accepted connection. May be called from any thread, after setBusy().
    void handleConnection(tSocketDescriptor socketDescriptor);
    /// Tells the thread to stop, without waiting for it.
    void requestStop();

private:
    void run();
    [[nodiscard]] std::optional<tSocketDescriptor> nextConnection();

    void serve(tSocketDescriptor socketDescriptor);
    [[nodiscard]] std::unique_ptr<ByteStream> openStream(tSocketDescriptor socketDescriptor) const;
    [[nodiscard]] bool receive();
    [[nodiscard]] bool read();
    void feedRequest();
    [[nodiscard]] bool serveRequest();
    void callService(HttpResponse &response);
    void refuseRequest(const QByteArray &response);
    void restartReadTimer();

    const HttpSettings &settings_;
    HttpRequestHandler *const requestHandler_;
    const QSslConfiguration *const sslConfiguration_;
    std::atomic<bool> busy_{false};
    std::atomic<bool> stopping_{false};

    std::mutex mutex_;  ///< guards pendingConnection_
    std::condition_variable wakeUp_;
    std::optional<tSocketDescriptor> pendingConnection_;

    // The current connection. Used only in the handler's thread.
    std::unique_ptr<ByteStream> socket_;
    QHostAddress peerAddress_;
    QDeadlineTimer readTimer_;
    std::array<char, 65536> buffer_{};
    HttpInput input_;
    std::optional<HttpRequest> currentRequest_;

    std::thread thread_;  // not a QThread, which uses a file descriptor
};
