#pragma once

#include <QObject>
#include <QTimer>
#include <memory>
#include <mutex>
#include <vector>

class HttpConnectionHandler;
class HttpRequestHandler;
class HttpSettings;
class QSslConfiguration;

/// The connection handlers of a listener. Handlers are created on demand, up to "maxThreads" (default 100). While more
/// than "minThreads" (default 1) are idle, one is removed every "cleanupInterval" ms (default 1000). Owned by the
/// listener and used in its thread, except for getConnectionHandler(), which may be called from any thread.
class HttpConnectionHandlerPool : public QObject {
    Q_OBJECT

public:
    /// Both must outlive the pool.
    HttpConnectionHandlerPool(const HttpSettings &settings, HttpRequestHandler *requestHandler);
    /// Stops all handlers, and waits for running HttpRequestHandler::service() calls.
    ~HttpConnectionHandlerPool() override;

    /// Returns a handler that is marked busy, or null if the maximum is in use or no thread can be created.
    [[nodiscard]] HttpConnectionHandler *getConnectionHandler();

private Q_SLOTS:
    void cleanup();

private:
    [[nodiscard]] HttpConnectionHandler *createHandler();

    const HttpSettings &settings_;
    HttpRequestHandler *const requestHandler_;
    std::unique_ptr<const QSslConfiguration> sslConfiguration_;
    std::vector<std::unique_ptr<HttpConnectionHandler>> pool_;  ///< in order of creation
    std::mutex mutex_;                                          ///< guards pool_
    QTimer cleanupTimer_;
};
