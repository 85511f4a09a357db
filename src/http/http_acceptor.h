#pragma once

#include "http/listen_waiter.h"
#include "http/refused_clients.h"
#include "http/unique_socket.h"

#include <atomic>
#include <thread>
#include <vector>

class HttpConnectionHandlerPool;

/// Accepts connections in its own thread, which is named "HTTP listener", and passes each one to a handler of the pool.
/// Refuses clients for whom there is no handler.
class HttpAcceptor {
public:
    /// Starts the thread. `listeners` are listening sockets in non-blocking mode. They and `pool` must outlive the
    /// acceptor. Throws std::system_error if no thread can be created.
    HttpAcceptor(std::vector<tSocketDescriptor> listeners, HttpConnectionHandlerPool &pool);
    /// Stops the thread.
    ~HttpAcceptor();
    HttpAcceptor(const HttpAcceptor &) = delete;
    HttpAcceptor &operator=(const HttpAcceptor &) = delete;

private:
    void run() noexcept;
    [[nodiscard]] bool acceptAll(tSocketDescriptor listener);
    void handOver(UniqueSocket client) noexcept;
    void waitAfterError();

    const std::vector<tSocketDescriptor> listeners_;
    HttpConnectionHandlerPool &pool_;
    ListenWaiter waiter_;
    RefusedClients refused_;
    std::atomic<bool> stopping_{false};
    bool failing_ = false;  ///< whether the last accept failed
    std::thread thread_;    // not a QThread, which ends the process if there is no file descriptor for it
};
