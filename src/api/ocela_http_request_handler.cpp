#include "api/ocela_http_request_handler.h"

#include "api/ocela_http_exchange.h"
#include "http/http_log.h"
#include "http/http_request.h"
#include "http/http_response.h"

#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <new>
#include <optional>

namespace {

/// Reserves memory for a file, for the lifetime of this object.
class FileMemory {
public:
    FileMemory(std::atomic<qint64> &usedBytes, qint64 fileBytes)
        : usedBytes_(usedBytes), sizeBytes_(countedBytes(fileBytes)), bytesBefore_(usedBytes.fetch_add(sizeBytes_)) {}
    ~FileMemory() { usedBytes_.fetch_sub(sizeBytes_); }
    FileMemory(const FileMemory &) = delete;
    FileMemory &operator=(const FileMemory &) = delete;

    [[nodiscard]] bool isGranted() const {
        return sizeBytes_ == 0 || bytesBefore_ + sizeBytes_ <= OcelaHTTPRequestHandler::maxFileBytes;
    }

private:
    static qint64 countedBytes(qint64 fileBytes) {
        if (fileBytes <= OcelaHTTPRequestHandler::maxSmallFileBytes)
            return 0;
        // Limited, so that the sum cannot overflow.
        return std::min(fileBytes, OcelaHTTPRequestHandler::maxFileBytes + 1);
    }

    std::atomic<qint64> &usedBytes_;
    const qint64 sizeBytes_;
    const qint64 bytesBefore_;
};

void warn(const QString &fileName, const QString &reason) {
    qCWarning(lcHttp, "Cannot send %ls: %ls", qUtf16Printable(fileName), qUtf16Printable(reason));
}

/// Reads at most `sizeBytes`, because some system files report a size of 0 and have no end. Logs the reason for a
/// failure.
std::optional<QByteArray> readFile(const QString &fileName, qint64 sizeBytes) {
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        warn(fileName, file.errorString());
        return std::nullopt;
    }
    if (!OcelaHTTPExchange::instance().mayServe(file)) {
        warn(fileName, "outside the folder http");
        return std::nullopt;
    }
    try {
        return file.read(sizeBytes);
    } catch (const std::bad_alloc &) {
        warn(fileName, "out of memory");
        return std::nullopt;
    }
}

QByteArray contentType(QString mimeType) {
    if (mimeType == "application/javascript")
        mimeType = "text/javascript";
    if (mimeType.contains("html") || mimeType.contains("javascript"))
        mimeType += "; charset=UTF-8";
    return mimeType.toLatin1();
}

/// Video players request ranges. The headers declare the whole file as the only range.
void addRangeHeaders(HttpResponse &response, int sizeBytes) {
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
    if (!refusal.isEmpty()) {
        refuse(refusal, response);
        return;
    }
    const ApiAnswer answer = exchange.answer(QString::fromUtf8(request.getPath()));
    addOriginHeaders(exchange.access(), request, response);
    const auto *file = std::get_if<FileAnswer>(&answer);
    if (file && sendFile(file->path, response))
        return;
    response.setHeader(QByteArrayLiteral("Content-Type"), QByteArrayLiteral("text/json; charset=UTF-8"));
    response.write(api_answer::toJson(answer, exchange.sampleJson()), true);
}

bool OcelaHTTPRequestHandler::sendFile(const QString &fileName, HttpResponse &response) {
    const QFileInfo info(fileName);
    // Opening a named pipe would block until another program writes to it.
    if (!info.isFile()) {
        warn(fileName, "not a regular file");
        return false;
    }
    const FileMemory memory(fileBytes_, info.size());
    if (!memory.isGranted()) {
        warn(fileName, "too large for the memory set aside for files");
        return false;
    }
    const std::optional<QByteArray> contents = readFile(fileName, info.size());
    if (!contents)
        return false;

    const QByteArray type = contentType(mimeTypes_.nameFor(info));
    response.setHeader("Content-Type", type);
    response.setHeader("Content-Length", contents->size());
    if (type.endsWith("mp4"))
        addRangeHeaders(response, contents->size());
    response.write(*contents, true);
    return true;
}
