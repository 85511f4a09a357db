#include "http/http_acceptor.h"

#include "http/http_connection_handler.h"
#include "http/http_connection_handler_pool.h"
#include "http/http_log.h"

#include <chrono>
#include <utility>

namespace {

/// The delay before the next accept after an error, which is usually a lack of file descriptors.
constexpr std::chrono::milliseconds acceptRetryTime{100};
constexpr int drainIntervalMs = 20;

}  // namespace

HttpAcceptor::HttpAcceptor(std::vector<tSocketDescriptor> listeners, HttpConnectionHandlerPool &pool)
    : listeners_(std::move(listeners)), pool_(pool), waiter_(listeners_), thread_([this] { run(); }) {}

HttpAcceptor::~HttpAcceptor() {
    stopping_ = true;
    waiter_.wake();
    thread_.join();
}

void HttpAcceptor::run() noexcept {
    system_calls::prepareThread("HTTP listener");
    while (!stopping_) {
        waiter_.wait(failing_ ? 0 : refused_.isEmpty() ? -1 : drainIntervalMs);
        bool succeeded = true;
        for (const tSocketDescriptor listener : listeners_)
            succeeded = acceptAll(listener) && succeeded;
        failing_ = !succeeded;
        refused_.drain();
    }
}

/// Returns false after an error.
bool HttpAcceptor::acceptAll(tSocketDescriptor listener) {
    while (!stopping_) {
        const qint64 client = system_calls::accept(listener);
        if (client == system_calls::tryAgain)
            return true;
        if (client < 0) {
            waitAfterError();
            return false;
        }
        handOver(UniqueSocket(client));
    }
    return true;
}

void HttpAcceptor::handOver(UniqueSocket client) noexcept {
    using Peer = HttpConnectionHandlerPool::Peer;
    try {
        const Peer peer = system_calls::peerAddress(client.get()).isLoopback() ? Peer::local : Peer::remote;
        if (HttpConnectionHandler *handler = pool_.getConnectionHandler(peer))
            return handler->handleConnection(std::move(client));
        qCDebug(lcHttp, "HttpListener: Too many incoming connections");
    } catch (...) {
        // Without memory, the client is refused.
    }
    refused_.add(std::move(client));
}

void HttpAcceptor::waitAfterError() {
    try {
        if (!failing_)
            qCWarning(lcHttp, "HttpListener: Cannot accept a connection: %s", qUtf8Printable(qt_error_string()));
    } catch (...) {
        // The message is lost.
    }
    std::this_thread::sleep_for(acceptRetryTime);
}
