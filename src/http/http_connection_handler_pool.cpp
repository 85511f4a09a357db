#include "http/http_connection_handler_pool.h"

#include "http/http_connection_handler.h"
#include "http/http_log.h"
#include "http/http_settings.h"
#include "http/system_calls.h"
#include "http/tls_configuration.h"

#include <QSslConfiguration>
#include <algorithm>
#include <system_error>

HttpConnectionHandlerPool::HttpConnectionHandlerPool(const HttpSettings &settings, HttpRequestHandler *requestHandler)
    : settings_(settings), requestHandler_(requestHandler), sslConfiguration_(tls_configuration::load(settings)) {
    system_calls::configureAllocator();
    connect(&cleanupTimer_, &QTimer::timeout, this, &HttpConnectionHandlerPool::cleanup);
    cleanupTimer_.start(settings_.number("cleanupInterval", 1000));
}

HttpConnectionHandlerPool::~HttpConnectionHandlerPool() {
    // All threads are told to stop before the first one is joined, so that all of them stop concurrently.
    for (const auto &handler : pool_)
        handler->requestStop();
    pool_.clear();
    qCDebug(lcHttp, "HttpConnectionHandlerPool (%p): destroyed", static_cast<void *>(this));
}

HttpConnectionHandler *HttpConnectionHandlerPool::createHandler() {
    try {
        pool_.push_back(std::make_unique<HttpConnectionHandler>(settings_, requestHandler_, sslConfiguration_.get()));
        return pool_.back().get();
    } catch (const std::system_error &error) {
        qCCritical(lcHttp, "HttpConnectionHandlerPool: cannot start a thread: %s", error.what());
        return nullptr;
    }
}

HttpConnectionHandler *HttpConnectionHandlerPool::getConnectionHandler() {
    const std::lock_guard<std::mutex> lock(mutex_);
    const auto idle = std::find_if(pool_.begin(), pool_.end(), [](const auto &handler) { return !handler->isBusy(); });
    HttpConnectionHandler *chosen = nullptr;
    if (idle != pool_.end())
        chosen = idle->get();
    else if (static_cast<int>(pool_.size()) < settings_.number("maxThreads", 100))
        chosen = createHandler();
    if (chosen)
        chosen->setBusy();
    return chosen;
}

void HttpConnectionHandlerPool::cleanup() {
    const std::lock_guard<std::mutex> lock(mutex_);
    int idleToKeep = settings_.number("minThreads", 1);
    const auto superfluous = std::find_if(pool_.begin(), pool_.end(), [&idleToKeep](const auto &handler) {
        return !handler->isBusy() && --idleToKeep < 0;
    });
    if (superfluous == pool_.end())
        return;
    const void *address = superfluous->get();
    pool_.erase(superfluous);
    system_calls::trimHeap();
    qCDebug(lcHttp, "HttpConnectionHandlerPool: Removed connection handler (%p), pool size is now %li", address,
            static_cast<long>(pool_.size()));
}
