#pragma once

#include "http/http_settings.h"
#include "http/system_calls.h"

#include <QTcpServer>
#include <memory>

class HttpConnectionHandlerPool;
class HttpRequestHandler;

/// A listening TCP server. Passes each accepted connection to a handler, which has its own thread. Must be used in the
/// thread that created it.
///
/// Settings, read each time they are needed: "host" (empty: all interfaces), "port" (0: the system chooses),
/// "minThreads", "maxThreads", "cleanupInterval" (ms), "readTimeout" (ms), "maxRequestSize" and "maxMultiPartSize"
/// (bytes), "sslKeyFile", "sslCertFile", "caCertFile" and "verifyPeer".
class HttpListener : public QTcpServer {
    Q_OBJECT

public:
    /// Starts listening. The caller keeps ownership of `settings` and `requestHandler`, which must outlive the
    /// listener.
    HttpListener(QSettings *settings, HttpRequestHandler *requestHandler, QObject *parent = nullptr);
    ~HttpListener() override;

    /// Starts listening again after close() or a failure. Logs an error on failure; see isListening().
    void listen();
    /// Stops listening and closes all connections. Waits for running HttpRequestHandler::service() calls, but not for
    /// clients.
    void close();

Q_SIGNALS:
    /// Not emitted by the listener, which calls HttpConnectionHandler::handleConnection() directly.
    void handleConnection(tSocketDescriptor socketDescriptor);

protected:
    void incomingConnection(tSocketDescriptor socketDescriptor) override;

private:
    void refuse(tSocketDescriptor socketDescriptor);

    const HttpSettings settings_;
    HttpRequestHandler *const requestHandler_;
    std::unique_ptr<HttpConnectionHandlerPool> pool_;
};
