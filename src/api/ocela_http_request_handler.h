#pragma once

#include "api/mime_types.h"
#include "http/http_request_handler.h"

#include <atomic>

/// Answers all requests of the HTTP API: gets the answer from the exchange, and sends it as a JSON document or a file.
///
/// The exchange owns the handler. The listener calls service() on the connections' threads. The status is always 200.
/// Files are read completely and sent in one write, without support for ranges. If a file cannot be sent (a folder, a
/// pipe, no permission, more than `maxFileBytes`), the reason is logged, and the JSON document of the answer is sent
/// instead.
class OcelaHTTPRequestHandler : public HttpRequestHandler {
    Q_OBJECT

public:
    /// Limits the memory for all files that are being sent at the same time.
    static constexpr qint64 maxFileBytes = 2'000'000'000;
    /// Files up to this size are not counted, so slow downloads of large files do not block web pages.
    static constexpr qint64 maxSmallFileBytes = 1'000'000;

    using HttpRequestHandler::HttpRequestHandler;

    void service(HttpRequest &request, HttpResponse &response) override;

private:
    [[nodiscard]] bool sendFile(const QString &fileName, HttpResponse &response);

    MimeTypes mimeTypes_;
    std::atomic<qint64> fileBytes_{0};
};
