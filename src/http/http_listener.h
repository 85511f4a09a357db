#pragma once

#include "http/http_settings.h"
#include "http/socket_descriptor.h"

#include <QTcpServer>
#include <memory>

class HttpConnectionHandlerPool;
class HttpRequestHandler;

/// The listening server: takes connections on the address and port of its settings and hands each to a handler with a
/// thread of its own.
///
/// Settings, read when they are needed: "host" (empty: every interface), "port" (0: the system chooses), "minThreads",
/// "maxThreads", "cleanupInterval" (ms), "readTimeout" (ms), "maxRequestSize" and "maxMultiPartSize" (bytes),
/// "sslKeyFile", "sslCertFile", "caCertFile", "verifyPeer". Everything here belongs to the thread that made the object.
class HttpListener : public QTcpServer {
    Q_OBJECT

public:
    /// Listens at once. `settings` and `requestHandler` stay the caller's and outlive the listener.
    HttpListener(QSettings *settings, HttpRequestHandler *requestHandler, QObject *parent = nullptr);
    ~HttpListener() override;

    /// Listens, again after close(), or if it failed. A failure is in the log, and isListening() tells.
    void listen();
    /// Ends listening, all connections and their threads. Waits for request handlers at work, but for no client.
    void close();

Q_SIGNALS:
    /// For the hand-over of a connection; the listener itself hands over without it.
    void handleConnection(tSocketDescriptor socketDescriptor);

protected:
    void incomingConnection(tSocketDescriptor socketDescriptor) override;

private:
    void refuse(tSocketDescriptor socketDescriptor);

    const HttpSettings settings_;
    HttpRequestHandler *const requestHandler_;
    std::unique_ptr<HttpConnectionHandlerPool> pool_;
};
