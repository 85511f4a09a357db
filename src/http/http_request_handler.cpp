#include "http/http_request_handler.h"

#include "http/http_log.h"
#include "http/http_request.h"
#include "http/http_response.h"

HttpRequestHandler::HttpRequestHandler(QObject *parent) : QObject(parent) {}

HttpRequestHandler::~HttpRequestHandler() = default;

void HttpRequestHandler::service(HttpRequest &request, HttpResponse &response) {
    qCCritical(lcHttp, "HttpRequestHandler: you need to override the service() function");
    qCDebug(lcHttp, "HttpRequestHandler: request=%s %s %s", request.getMethod().constData(),
            request.getPath().constData(), request.getVersion().constData());
    response.setStatus(501, "not implemented");
    response.write("501 not implemented", true);
}
