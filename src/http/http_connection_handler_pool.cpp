#include "http/http_connection_handler_pool.h"

#include "http/http_connection_handler.h"
#include "http/http_log.h"
#include "http/http_server_context.h"
#include "http/system_calls.h"

#include <algorithm>
#include <exception>
#include <utility>

namespace {

/// The part of all handlers that is kept for clients on the same machine.
constexpr int localShare = 5;
/// How long the destructor waits for running service() calls.
constexpr std::chrono::seconds stopTime{2};

}  // namespace

HttpConnectionHandlerPool::HttpConnectionHandlerPool(std::shared_ptr<HttpServerContext> context)
    : context_(std::move(context)) {
    system_calls::configureAllocator();
    connect(&cleanupTimer_, &QTimer::timeout, this, &HttpConnectionHandlerPool::cleanup);
    cleanupTimer_.start(settings().number("cleanupInterval", 1000));
}

HttpConnectionHandlerPool::~HttpConnectionHandlerPool() {
    // All threads are told to stop before the first one is joined, so that all of them stop concurrently.
    for (const auto &handler : pool_)
        handler->requestStop();
    const auto deadline = std::chrono::steady_clock::now() + stopTime;
    for (const auto &handler : pool_)
        handler->waitForEnd(deadline);
    context_->settings.detach();
    qCDebug(lcHttp, "HttpConnectionHandlerPool (%p): destroyed", static_cast<void *>(this));
}

const HttpSettings &HttpConnectionHandlerPool::settings() const {
    return context_->settings;
}

HttpConnectionHandler *HttpConnectionHandlerPool::createHandler() noexcept {
    try {
        pool_.reserve(pool_.size() + 1);
        pool_.push_back(HttpConnectionHandler::start(context_));
        return pool_.back().get();
    } catch (const std::exception &error) {
        http_log::failure("HttpConnectionHandlerPool: cannot start a thread", error.what());
        return nullptr;
    }
}

HttpConnectionHandler *HttpConnectionHandlerPool::getConnectionHandler(Peer peer) {
    const std::lock_guard<std::mutex> lock(mutex_);
    const int maxCount = settings().number("maxThreads", 100);
    const int keptCount = peer == Peer::local ? 0 : maxCount / localShare;
    const auto busyCount = std::count_if(pool_.begin(), pool_.end(), [](const auto &entry) { return entry->isBusy(); });
    if (busyCount >= maxCount - keptCount)
        return nullptr;
    const auto idle = std::find_if(pool_.begin(), pool_.end(), [](const auto &handler) { return !handler->isBusy(); });
    HttpConnectionHandler *chosen = idle != pool_.end() ? idle->get() : createHandler();
    if (chosen)
        chosen->setBusy();
    return chosen;
}

void HttpConnectionHandlerPool::cleanup() {
    const std::lock_guard<std::mutex> lock(mutex_);
    int idleToKeep = settings().number("minThreads", 1);
    const auto superfluous = std::find_if(pool_.begin(), pool_.end(), [&idleToKeep](const auto &handler) {
        return !handler->isBusy() && --idleToKeep < 0;
    });
    if (superfluous == pool_.end())
        return;
    const void *address = superfluous->get();
    (*superfluous)->requestStop();
    (*superfluous)->waitForEnd(std::chrono::steady_clock::now() + stopTime);
    pool_.erase(superfluous);
    system_calls::trimHeap();
    qCDebug(lcHttp, "HttpConnectionHandlerPool: Removed connection handler (%p), pool size is now %li", address,
            static_cast<long>(pool_.size()));
}
