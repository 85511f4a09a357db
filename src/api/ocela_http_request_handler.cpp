#include "api/ocela_http_request_handler.h"

#include "api/ocela_http_exchange.h"
#include "http/http_log.h"
#include "http/http_request.h"
#include "http/http_response.h"

#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <new>

namespace {

/// A share of the memory for files, for as long as this object lives.
class FileMemory {
public:
    FileMemory(std::atomic<qint64> &used, qint64 size)
        : used_(used), size_(counted(size)), before_(used.fetch_add(size_)) {}
    ~FileMemory() { used_.fetch_sub(size_); }
    FileMemory(const FileMemory &) = delete;
    FileMemory &operator=(const FileMemory &) = delete;

    [[nodiscard]] bool isGranted() const {
        return size_ == 0 || before_ + size_ <= OcelaHTTPRequestHandler::mostFileBytes;
    }

private:
    static qint64 counted(qint64 size) {
        // Never refused, so that a client which is slow with large files keeps nobody from a page.
        if (size <= OcelaHTTPRequestHandler::smallFileBytes)
            return 0;
        return std::min(size, OcelaHTTPRequestHandler::mostFileBytes + 1);
    }

    std::atomic<qint64> &used_;
    const qint64 size_;
    const qint64 before_;
};

bool fail(const QString &fileName, const QString &reason) {
    qCWarning(lcHttp, "Cannot send %ls: %ls", qUtf16Printable(fileName), qUtf16Printable(reason));
    return false;
}

/// At most `size` bytes, as files of the system may claim to be empty and never end.
bool readWhole(QFile &file, qint64 size, QByteArray &contents) {
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return fail(file.fileName(), file.errorString());
    try {
        contents = file.read(size);
    } catch (const std::bad_alloc &) {
        return fail(file.fileName(), "out of memory");
    }
    return true;
}

QByteArray contentType(QString mimeType) {
    if (mimeType == "application/javascript")
        mimeType = "text/javascript";
    if (mimeType.contains("html") || mimeType.contains("javascript"))
        mimeType += "; charset=UTF-8";
    return mimeType.toLatin1();
}

/// Video players ask for ranges; they are told that the whole file is one.
void announceRange(HttpResponse &response, int size) {
    const QByteArray total = QByteArray::number(size);
    response.setHeader("Accept-Ranges", "bytes");
    response.setHeader("Connection", "keep-alive");
    response.setHeader("Content-Range", "bytes 0-" + QByteArray::number(size - 1) + '/' + total);
}

}  // namespace

void OcelaHTTPRequestHandler::service(HttpRequest &request, HttpResponse &response) {
    OcelaHTTPExchange &exchange = OcelaHTTPExchange::instance();
    const ApiAnswer answer = exchange.answer(QString::fromUtf8(request.getPath()));
    response.setHeader(QByteArrayLiteral("Access-Control-Allow-Origin"), QByteArrayLiteral("*"));
    if (!answer.filePath.isEmpty() && sendFile(answer.filePath, response))
        return;
    response.setHeader(QByteArrayLiteral("Content-Type"), QByteArrayLiteral("text/json; charset=UTF-8"));
    response.write(answer.toJson(exchange.sampleJson()), true);
}

bool OcelaHTTPRequestHandler::sendFile(const QString &fileName, HttpResponse &response) {
    const QFileInfo info(fileName);
    // Opening a pipe waits for whoever writes to it.
    if (!info.isFile())
        return fail(fileName, "not a regular file");
    const FileMemory memory(fileBytes_, info.size());
    if (!memory.isGranted())
        return fail(fileName, "too large for the memory set aside for files");
    QFile file(fileName);
    QByteArray contents;
    if (!readWhole(file, info.size(), contents))
        return false;

    const QByteArray type = contentType(mimeTypes_.nameFor(info));
    response.setHeader("Content-Type", type);
    response.setHeader("Content-Length", contents.size());
    if (type.endsWith("mp4"))
        announceRange(response, contents.size());
    response.write(contents, true);
    return true;
}
