#include "api/ocela_http_request_handler.h"

#include "api/access_policy.h"
#include "api/confined_file.h"
#include "api/ocela_http_exchange.h"
#include "api/v1/router.h"
#include "http/http_log.h"
#include "http/http_request.h"
#include "http/http_response.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

/// The exchange refuses paths of more than 32,767 characters, of which each has at most 3 bytes in UTF-8. Longer paths
/// are cut, so that they are not converted.
constexpr int maxPathBytes = 3 * 32768;

/// A browser asks with such a request whether a page of another site may send the request that it describes.
bool isPreflight(const HttpRequest &request) {
    return request.getMethod() == "OPTIONS" && !request.getHeader("Access-Control-Request-Method").isEmpty();
}

void answerPreflight(HttpResponse &response) {
    response.setStatus(204, "No Content");
    response.setHeader("Access-Control-Allow-Methods", "GET, HEAD, POST, PUT, PATCH, DELETE");
    response.setHeader("Access-Control-Allow-Headers", "*");
    response.setHeader("Access-Control-Max-Age", "86400");
    response.write(QByteArray(), true);
}

void warn(const QString &fileName, const QString &reason) {
    constexpr int maxLoggedLength = 200;
    qCWarning(lcHttp, "Cannot send %ls: %ls", qUtf16Printable(fileName.left(maxLoggedLength)), qUtf16Printable(reason));
}

QByteArray contentType(QString mimeType) {
    if (mimeType == "application/javascript")
        mimeType = "text/javascript";
    if (mimeType.contains("html") || mimeType.contains("javascript"))
        mimeType += "; charset=UTF-8";
    return mimeType.toLatin1();
}

/// Video players request ranges. The headers declare the whole file as the only range.
void setHeaders(HttpResponse &response, const QByteArray &type, qint64 sizeBytes) {
    response.setHeader("Content-Type", type);
    if (!type.endsWith("mp4"))
        return;
    const QByteArray total = QByteArray::number(sizeBytes);
    response.setHeader("Accept-Ranges", "bytes");
    response.setHeader("Connection", "keep-alive");
    response.setHeader("Content-Range", "bytes 0-" + QByteArray::number(sizeBytes - 1) + '/' + total);
}

/// Tells browsers which pages may read the response.
void addOriginHeaders(const AccessPolicy &access, const HttpRequest &request, HttpResponse &response) {
    if (access.rights().foreignPages) {
        response.setHeader(QByteArrayLiteral("Access-Control-Allow-Origin"), QByteArrayLiteral("*"));
        return;
    }
    response.setHeader("Vary", "Origin");
    const QByteArray origin = access.allowedOriginOf(request);
    if (!origin.isEmpty())
        response.setHeader("Access-Control-Allow-Origin", origin);
}

void refuse(const QByteArray &reason, HttpResponse &response) {
    response.setStatus(403, "Forbidden");
    response.setHeader("Connection", "close");
    response.setHeader("Content-Type", "text/json; charset=UTF-8");
    const QJsonObject answer{{"result", false}, {"error", QString::fromLatin1(reason)}};
    response.write(QJsonDocument(answer).toJson(QJsonDocument::Compact), true);
}

}  // namespace

void OcelaHTTPRequestHandler::service(HttpRequest &request, HttpResponse &response) {
    OcelaHTTPExchange &exchange = OcelaHTTPExchange::instance();
    if (api_v1::Router::hasPath(request.getPath())) {
        exchange.programApi().service(request, response);
        return;
    }
    const QByteArray refusal = exchange.access().refusalOfSimpleRequest(request);
    if (!refusal.isEmpty())
        return refuse(refusal, response);
    addOriginHeaders(exchange.access(), request, response);
    if (isPreflight(request))
        return answerPreflight(response);
    // A call of the file system may outlive the exchange, so the rest of the request does not use it.
    const std::shared_ptr<SampleJsonCache> sampleJson = exchange.sampleJson();
    const std::optional<QString> folder = exchange.fileConfinement();
    const ApiAnswer answer = exchange.answer(QString::fromUtf8(request.getPath().left(maxPathBytes)));
    const auto *file = std::get_if<FileAnswer>(&answer);
    if (file && sendFile(file->path, folder, response))
        return;
    response.setHeader(QByteArrayLiteral("Content-Type"), QByteArrayLiteral("text/json; charset=UTF-8"));
    response.write(api_answer::toJson(answer, *sampleJson), true);
}

bool OcelaHTTPRequestHandler::sendFile(const QString &fileName, const std::optional<QString> &folder,
                                       HttpResponse &response) {
    const QFileInfo info(fileName);
    // Opening a named pipe would block until another program writes to it.
    if (!info.isFile()) {
        warn(fileName, "not a regular file");
        return false;
    }
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        warn(fileName, file.errorString());
        return false;
    }
    if (folder && !confined_file::isInside(file, *folder)) {
        warn(fileName, "outside the folder " + *folder);
        return false;
    }
    const QByteArray type = contentType(mimeTypes_.nameFor(info));
    const qint64 sizeBytes = file.size();
    if (sizeBytes > maxSmallFileBytes) {
        setHeaders(response, type, sizeBytes);
        response.writeFile(file, 0, sizeBytes);
        return true;
    }
    QByteArray contents(static_cast<int>(sizeBytes), Qt::Uninitialized);
    const qint64 readBytes = file.read(contents.data(), sizeBytes);
    if (readBytes < 0) {
        warn(fileName, file.errorString());
        return false;
    }
    contents.truncate(static_cast<int>(readBytes));
    setHeaders(response, type, readBytes);
    response.write(contents, true);
    return true;
}
