#pragma once

#include <QObject>
#include <QTimer>
#include <memory>
#include <mutex>
#include <vector>

class HttpConnectionHandler;
class HttpSettings;
struct HttpServerContext;

/// The connection handlers of a listener. Handlers are created on demand, up to "maxThreads" (default 100). A fifth of
/// them is kept for clients on the same machine. While more than "minThreads" (default 1) are idle, one is removed
/// every "cleanupInterval" ms (default 1000). Owned by the listener and used in its thread, except for
/// getConnectionHandler(), which may be called from any thread.
class HttpConnectionHandlerPool : public QObject {
    Q_OBJECT

public:
    enum class Peer { local, remote };

    explicit HttpConnectionHandlerPool(std::shared_ptr<HttpServerContext> context);
    /// Stops all handlers. Waits up to two seconds for running HttpRequestHandler::service() calls. After that, the
    /// settings are no longer used.
    ~HttpConnectionHandlerPool() override;

    /// Returns a handler that is marked busy, or null if no more handlers may be used for this peer, or if no thread
    /// can be created.
    [[nodiscard]] HttpConnectionHandler *getConnectionHandler(Peer peer = Peer::local);

    [[nodiscard]] const HttpSettings &settings() const;

private Q_SLOTS:
    void cleanup();

private:
    [[nodiscard]] HttpConnectionHandler *createHandler() noexcept;

    const std::shared_ptr<HttpServerContext> context_;
    std::vector<std::shared_ptr<HttpConnectionHandler>> pool_;  ///< in order of creation
    std::mutex mutex_;                                          ///< guards pool_
    QTimer cleanupTimer_;
};
