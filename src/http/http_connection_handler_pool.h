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

/// The handlers of a listener, with their threads: made when they are needed, "maxThreads" (100) at most, and retired
/// one every "cleanupInterval" ms (1000) while more than "minThreads" (1) are idle. Owned by the listener, in whose
/// thread everything happens; getConnectionHandler() may be called from any thread.
class HttpConnectionHandlerPool : public QObject {
    Q_OBJECT

public:
    /// Both outlive the pool.
    HttpConnectionHandlerPool(const HttpSettings &settings, HttpRequestHandler *requestHandler);
    /// Ends all handlers, and waits for request handlers at work.
    ~HttpConnectionHandlerPool() override;

    /// A handler for a new connection, marked busy already; null when all that may be are, or none can be made.
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
