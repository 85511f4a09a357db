#pragma once

#include "api/mime_types.h"
#include "http/http_request_handler.h"

#include <optional>

/// Answers all requests of the HTTP API: gets the answer from the exchange, and sends it as a JSON document or a file.
///
/// The listener owns the handler, and calls service() on the connections' threads. A call that hangs in the file system
/// can outlive the exchange, so after the exchange has answered, service() uses only objects that it owns. The status
/// is always 200, except for a preflight request, which runs nothing and gets 204, and for a refused request, which
/// gets 403. Requests to the API for programs go to api_v1::Router. Files are sent whole, without support for ranges.
/// If a file cannot be sent (a folder, a pipe, no permission), the reason is logged, and the JSON document of the
/// answer is sent instead.
class OcelaHTTPRequestHandler : public HttpRequestHandler {
    Q_OBJECT

public:
    /// Files up to this size are read into memory and sent in one write.
    static constexpr qint64 maxSmallFileBytes = 65536;

    using HttpRequestHandler::HttpRequestHandler;

    void service(HttpRequest &request, HttpResponse &response) override;

private:
    /// `folder` must contain the file, if it is set.
    [[nodiscard]] bool sendFile(const QString &fileName, const std::optional<QString> &folder, HttpResponse &response);

    MimeTypes mimeTypes_;
};
