#pragma once

#include "api/mime_types.h"
#include "http/http_request_handler.h"

#include <atomic>

/// Answers every request of the HTTP API: asks the exchange and sends what it says, a JSON document or a file.
///
/// Owned by the exchange, whose listener calls service() from the connections' threads. The status is always 200.
/// Files are read whole and sent in one write, ranges are not served. What cannot be sent as a file (a folder, a pipe,
/// no permission, more than `mostFileBytes`) is in the log, and its JSON document is sent instead.
class OcelaHTTPRequestHandler : public HttpRequestHandler {
    Q_OBJECT

public:
    /// What all files that are being sent may take together, as they lie in memory; small ones are not counted.
    static constexpr qint64 mostFileBytes = 2'000'000'000;
    static constexpr qint64 smallFileBytes = 1'000'000;

    using HttpRequestHandler::HttpRequestHandler;

    void service(HttpRequest &request, HttpResponse &response) override;

private:
    [[nodiscard]] bool sendFile(const QString &fileName, HttpResponse &response);

    MimeTypes mimeTypes_;
    std::atomic<qint64> fileBytes_{0};
};
