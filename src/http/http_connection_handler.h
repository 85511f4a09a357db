#pragma once

#include "http/byte_stream.h"
#include "http/http_input.h"
#include "http/http_request.h"
#include "http/socket_descriptor.h"

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

/// Serves one connection at a time, any number of them one after the other, in a thread of its own: reads requests,
/// lets the request handler answer them, decides whether the connection stays open, and ends it after "readTimeout" ms
/// (10,000 unless set) without a whole request.
///
/// Created, lent out and destroyed by the pool. handleConnection() only hands over; all else that happens to a
/// connection happens in the handler's thread.
class HttpConnectionHandler {
public:
    /// All three outlive the handler; no encryption without `sslConfiguration`. Throws std::system_error if the system
    /// gives no thread.
    HttpConnectionHandler(const HttpSettings &settings, HttpRequestHandler *requestHandler,
                          const QSslConfiguration *sslConfiguration);
    /// Breaks off a connection that is open and waits for the thread. A request handler at work is waited for; of what
    /// it answers goes out what the client takes at once.
    ~HttpConnectionHandler();
    HttpConnectionHandler(const HttpConnectionHandler &) = delete;
    HttpConnectionHandler &operator=(const HttpConnectionHandler &) = delete;

    /// True from being chosen by the pool to the end of the connection.
    [[nodiscard]] bool isBusy() const { return busy_; }
    void setBusy() { busy_ = true; }

    /// Takes over an accepted connection. Any thread; the handler must be idle, or busy by setBusy() alone.
    void handleConnection(tSocketDescriptor socketDescriptor);
    /// Makes the thread end soon, without waiting for it.
    void requestStop();

private:
    void run();
    [[nodiscard]] std::optional<tSocketDescriptor> nextConnection();

    void serve(tSocketDescriptor socketDescriptor);
    [[nodiscard]] std::unique_ptr<ByteStream> openStream(tSocketDescriptor socketDescriptor) const;
    [[nodiscard]] bool receive();
    [[nodiscard]] bool read();
    void feedRequest();
    [[nodiscard]] bool answerRequest();
    void callService(HttpResponse &response);
    void refuseRequest(const QByteArray &answer);
    void restartReadTimer();

    const HttpSettings &settings_;
    HttpRequestHandler *const requestHandler_;
    const QSslConfiguration *const sslConfiguration_;
    std::atomic<bool> busy_{false};
    std::atomic<bool> stopping_{false};

    std::mutex mutex_;  ///< guards the connection that is being handed over
    std::condition_variable handedOver_;
    std::optional<tSocketDescriptor> handedOverConnection_;

    // Of the connection that is being served; the handler's thread alone.
    std::unique_ptr<ByteStream> socket_;
    QHostAddress peerAddress_;
    QDeadlineTimer readTimer_;
    std::array<char, 65536> buffer_{};
    HttpInput input_;
    std::optional<HttpRequest> currentRequest_;

    std::thread thread_;  // not Qt's, which takes a descriptor for each
};
