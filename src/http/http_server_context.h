#pragma once

#include "http/http_settings.h"
#include "http/memory_budget.h"
#include "http/work_slots.h"

#include <QSslConfiguration>
#include <memory>

class HttpRequestHandler;

/// What all connections of a listener share. Each connection's thread keeps it alive, because a thread whose
/// HttpRequestHandler::service() hangs may outlive the listener.
struct HttpServerContext {
    /// Reads the TLS configuration and "maxTotalRequestBytes" (default 256,000,000), the memory of all requests.
    HttpServerContext(const QSettings *values, std::shared_ptr<HttpRequestHandler> handler);
    ~HttpServerContext();
    HttpServerContext(const HttpServerContext &) = delete;
    HttpServerContext &operator=(const HttpServerContext &) = delete;

    HttpSettings settings;
    const std::shared_ptr<HttpRequestHandler> requestHandler;
    const std::unique_ptr<const QSslConfiguration> sslConfiguration;  ///< null without encryption
    MemoryBudget requestMemory;
    WorkSlots bodySlots;
};
