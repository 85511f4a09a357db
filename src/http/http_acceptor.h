#pragma once

#include "http/listen_waiter.h"
#include "http/refused_clients.h"
#include "http/unique_socket.h"

#include <QThread>
#include <atomic>
#include <memory>
#include <vector>

class HttpConnectionHandlerPool;

/// Accepts connections in its own thread, which is named "HTTP listener", and passes each one to a handler of the pool.
/// Refuses clients for whom there is no handler.
class HttpAcceptor {
public:
    /// Listening sockets in non-blocking mode. They and `pool` must outlive the acceptor.
    HttpAcceptor(std::vector<tSocketDescriptor> listeners, HttpConnectionHandlerPool &pool);
    /// Stops the thread.
    ~HttpAcceptor();
    HttpAcceptor(const HttpAcceptor &) = delete;
    HttpAcceptor &operator=(const HttpAcceptor &) = delete;

    /// Returns false if the system could not start the thread.
    [[nodiscard]] bool isRunning() const { return thread_->isRunning(); }

private:
    void run() noexcept;
    void acceptAll(tSocketDescriptor listener);
    void handOver(UniqueSocket client) noexcept;
    void waitAfterError();

    const std::vector<tSocketDescriptor> listeners_;
    HttpConnectionHandlerPool &pool_;
    ListenWaiter waiter_;
    RefusedClients refused_;
    std::atomic<bool> stopping_{false};
    bool failing_ = false;  ///< whether the last accept failed
    const std::unique_ptr<QThread> thread_;
};
