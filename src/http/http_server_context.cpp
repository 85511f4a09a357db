#include "http/http_server_context.h"

#include "http/http_request_handler.h"
#include "http/tls_configuration.h"

#include <algorithm>
#include <utility>

namespace {

constexpr int defaultTotalRequestBytes = 256'000'000;

}  // namespace

HttpServerContext::HttpServerContext(const QSettings *values, std::shared_ptr<HttpRequestHandler> handler)
    : settings(values),
      requestHandler(std::move(handler)),
      sslConfiguration(tls_configuration::load(settings)),
      requestMemory(std::max(0, settings.number(QStringLiteral("maxTotalRequestBytes"), defaultTotalRequestBytes))) {}

HttpServerContext::~HttpServerContext() = default;
