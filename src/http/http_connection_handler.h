#pragma once

#include "http/byte_stream.h"
#include "http/http_input.h"
#include "http/http_request.h"
#include "http/transfer_rate.h"
#include "http/unique_socket.h"

#include <QDeadlineTimer>
#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>

class HttpResponse;
struct HttpServerContext;

/// Serves connections, one at a time, in its own thread. Reads requests, calls the request handler and decides whether
/// the connection stays open. An exception, such as a lack of memory, ends the connection only.
///
/// Closes the connection without a response if
/// - no complete request arrives within "readTimeout" ms (default 10,000); each part of a body restarts the timeout;
/// - the headers of a request take longer than "headerTimeout" ms (default 30,000) in total. Headers do not restart the
///   read timeout, so this limit matters only if "readTimeout" is longer;
/// - the client sends a body, or reads a response, at less than "minBytesPerSecond" (default 1024) on average over
///   "rateWindow" ms (default 30,000; 0 disables the rule).
///
/// The pool and the handler's thread own the handler. Only handleConnection(), requestStop(), waitForEnd() and the busy
/// flag are used from other threads.
class HttpConnectionHandler {
public:
    /// Creates a handler and starts its thread. Throws std::system_error if no thread can be created. Call waitForEnd()
    /// before the handler is released.
    [[nodiscard]] static std::shared_ptr<HttpConnectionHandler> start(std::shared_ptr<HttpServerContext> context);
    explicit HttpConnectionHandler(std::shared_ptr<HttpServerContext> context);
    ~HttpConnectionHandler();
    HttpConnectionHandler(const HttpConnectionHandler &) = delete;
    HttpConnectionHandler &operator=(const HttpConnectionHandler &) = delete;

    /// True from setBusy(), which the pool calls, until the connection is closed.
    [[nodiscard]] bool isBusy() const { return busy_; }
    void setBusy() { busy_ = true; }

    /// Takes an accepted connection. May be called from any thread, after setBusy().
    void handleConnection(UniqueSocket socket);
    /// Tells the thread to close its connection and to stop, without waiting for it. Only response data that the socket
    /// accepts without blocking is still sent.
    void requestStop();
    /// Waits for the end of the thread. If HttpRequestHandler::service() takes longer than `deadline`, leaves the
    /// thread behind, which then owns this object. Call it after requestStop(), and only once.
    void waitForEnd(std::chrono::steady_clock::time_point deadline);

    /// Returns the number of threads that were left behind and are still running. Thread-safe.
    [[nodiscard]] static int leftThreadCount();

private:
    void run() noexcept;
    [[nodiscard]] std::optional<UniqueSocket> nextConnection();

    void serve(UniqueSocket socket) noexcept;
    void serveRequests(UniqueSocket socket);
    [[nodiscard]] std::unique_ptr<ByteStream> openStream(UniqueSocket socket) const;
    void readRules();
    void restartReadTimer();
    [[nodiscard]] bool receive();
    [[nodiscard]] bool isReceivingBody() const;
    [[nodiscard]] QDeadlineTimer receiveDeadline() const;
    [[nodiscard]] bool read();
    void feedRequest();
    [[nodiscard]] bool serveRequest();
    [[nodiscard]] bool callService(HttpResponse &response);
    void refuseRequest(const QByteArray &response);

    const std::shared_ptr<HttpServerContext> context_;
    std::atomic<bool> busy_{false};
    std::atomic<bool> stopping_{false};

    std::mutex mutex_;  ///< guards the next three
    std::condition_variable changed_;
    std::optional<UniqueSocket> pendingConnection_;
    bool ended_ = false;  ///< whether the thread has left run()
    bool left_ = false;   ///< whether the thread was left behind

    // The current connection. Used only in the handler's thread.
    struct Timeouts {
        int readMs = 0;
        int headerMs = 0;
        std::chrono::milliseconds rateWindow{0};
        qint64 minWindowBytes = 0;
    };
    std::unique_ptr<ByteStream> socket_;
    QHostAddress peerAddress_;
    Timeouts timeouts_;  ///< "readTimeout" is read once for each request, the others once for each connection
    QDeadlineTimer readTimer_;
    QDeadlineTimer headerTimer_;
    TransferRate bodyRate_;
    qint64 bodyBytes_ = 0;  ///< received for the current body
    std::array<char, 65536> buffer_{};
    HttpInput input_;
    std::optional<HttpRequest> currentRequest_;

    std::thread thread_;  // not a QThread, which uses a file descriptor
};
