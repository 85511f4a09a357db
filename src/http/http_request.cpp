#include "http/http_request.h"

#include "http/byte_text.h"
#include "http/http_cookie.h"
#include "http/http_log.h"
#include "http/http_settings.h"
#include "http/multipart_form.h"
#include "http/url_encoding.h"

#include <QTemporaryFile>
#include <algorithm>
#include <charconv>
#include <limits>
#include <numeric>

using namespace byte_text;

namespace {

/// A QByteArray holds less than 2 GiB. Half of that leaves room for additions to a size, which is an int.
constexpr int maxLimitBytes = 1 << 30;

constexpr qint64 maxMultiPartBlockBytes = 65536;

/// The maximum number of headers, of parameters and of cookies. A map entry uses about 100 bytes in addition to its
/// text, so this limits a map of very short entries to 1 MB.
constexpr int maxEntryCount = 10000;

qint64 limitFrom(const HttpSettings &settings, const QString &key) {
    return qBound(0, settings.number(key, 50000000), maxLimitBytes);
}

/// Returns the value of "Content-Length", or 0 if it is not a decimal number without a sign. A number out of range is
/// read as 4 GiB - 1, which exceeds every size limit.
qint64 contentLength(const QByteArray &text) {
    quint32 number = 0;
    const auto [end, error] = std::from_chars(text.begin(), text.end(), number);
    if (end != text.end())
        return 0;
    return error == std::errc::result_out_of_range ? std::numeric_limits<quint32>::max() : number;
}

qint64 count(std::string_view text, char separator) {
    return std::count(text.begin(), text.end(), separator);
}

QByteArray withoutQuotes(const QByteArray &text) {
    const bool quoted = text.size() > 1 && text.startsWith('"') && text.endsWith('"');
    return quoted ? text.mid(1, text.size() - 2) : text;
}

}  // namespace

HttpRequest::HttpRequest(const HttpSettings &settings)
    : maxSize_(limitFrom(settings, QStringLiteral("maxRequestSize"))),
      maxMultiPartSize_(limitFrom(settings, QStringLiteral("maxMultiPartSize"))) {}

HttpRequest::~HttpRequest() = default;

void HttpRequest::readFromSocket(HttpInput &socket) {
    switch (status_) {
        case waitForRequest:
            peerAddress_ = socket.peerAddress();
            readLine(socket, &HttpRequest::readRequestLine);
            break;
        case waitForHeader:
            readLine(socket, &HttpRequest::readHeaderLine);
            break;
        case waitForBody:
            boundary_.isEmpty() ? readBody(socket) : readMultiPartBody(socket);
            break;
        case complete:
        case abortSize:
        case abortBroken:
            return;
    }
    if (exceedsLimits()) {
        qCWarning(lcHttp, "HttpRequest: received too many bytes");
        status_ = abortSize;
    }
    if (status_ == complete) {
        decodeParameters();
        extractCookies();
    }
}

bool HttpRequest::exceedsLimits() const {
    if (!boundary_.isEmpty())
        return currentSize_ > maxMultiPartSize_;
    // Each continuation line stores the whole header again, so without a limit memory grows quadratically.
    return std::max(currentSize_, storedHeaderSize_) > maxSize_ || headers_.size() > maxEntryCount;
}

// Reading stops at each line feed, so a line is complete exactly when the collected bytes end with CR LF. A line that
// arrives in one piece is not copied.
void HttpRequest::readLine(HttpInput &socket, Step interpret) {
    const std::string_view piece = socket.takeLine(static_cast<std::size_t>(maxSize_ - currentSize_ + 1));
    currentSize_ += static_cast<qint64>(piece.size());
    if (lineBuffer_.isEmpty() && endsWith(piece, "\r\n")) {
        (this->*interpret)(trimmed(piece));
        return;
    }
    lineBuffer_.append(piece.data(), static_cast<int>(piece.size()));
    if (lineBuffer_.endsWith("\r\n")) {
        (this->*interpret)(trimmed(view(lineBuffer_)));
        lineBuffer_.clear();
    }
}

void HttpRequest::readRequestLine(std::string_view line) {
    if (line.empty())
        return;
    const std::size_t first = line.find(' ');
    const std::size_t last = line.rfind(' ');
    // There must be exactly two spaces, with the request target between them.
    const bool threePieces = first != std::string_view::npos && last > first + 1 && line.find(' ', first + 1) == last;
    if (!threePieces || !contains(line.substr(last), "HTTP")) {
        qCWarning(lcHttp, "HttpRequest: received broken HTTP request, invalid first line");
        status_ = abortBroken;
        return;
    }
    method_ = copy(trimmed(line.substr(0, first)));
    path_ = rawPath_ = copy(line.substr(first + 1, last - first - 1));
    version_ = copy(line.substr(last + 1));
    status_ = waitForHeader;
}

void HttpRequest::readHeaderLine(std::string_view line) {
    const std::size_t colon = line.find(':');
    if (line.empty()) {
        finishHeaders();
    } else if (colon != 0 && colon != std::string_view::npos) {
        currentHeader_ = copy(line.substr(0, colon)).toLower();
        addHeader(currentHeader_, copy(trimmed(line.substr(colon + 1))));
    } else if (headers_.contains(currentHeader_)) {
        addHeader(currentHeader_, headers_.value(currentHeader_) + ' ' + copy(line));
    }
}

void HttpRequest::addHeader(const QByteArray &name, const QByteArray &value) {
    storedHeaderSize_ += name.size() + value.size();
    headers_.insert(name, value);
}

void HttpRequest::finishHeaders() {
    const QByteArray contentType = headers_.value(QByteArrayLiteral("content-type"));
    const int boundary = contentType.indexOf("boundary=");
    if (boundary >= 0 && contentType.startsWith("multipart/form-data"))
        boundary_ = withoutQuotes(contentType.mid(boundary + int(qstrlen("boundary="))));

    expectedBodySize_ = contentLength(headers_.value(QByteArrayLiteral("content-length")));
    if (expectedBodySize_ == 0)
        status_ = complete;
    else if (boundary_.isEmpty())
        expectBody(maxSize_ - currentSize_, "HttpRequest: expected body is too large");
    else
        expectBody(maxMultiPartSize_, "HttpRequest: expected multipart body is too large");
}

void HttpRequest::expectBody(qint64 maxBytes, const char *tooLarge) {
    status_ = expectedBodySize_ > maxBytes ? abortSize : waitForBody;
    if (status_ == abortSize)
        qCWarning(lcHttp, "%s", tooLarge);
}

void HttpRequest::readBody(HttpInput &socket) {
    const std::string_view block = socket.take(static_cast<std::size_t>(expectedBodySize_ - bodyData_.size()));
    currentSize_ += static_cast<qint64>(block.size());
    bodyData_.append(block.data(), static_cast<int>(block.size()));
    if (bodyData_.size() == expectedBodySize_)
        status_ = complete;
}

void HttpRequest::readMultiPartBody(HttpInput &socket) {
    if (!tempFile_)
        tempFile_ = std::make_unique<QTemporaryFile>();
    const qint64 limit = std::min(expectedBodySize_ - tempFile_->pos(), maxMultiPartBlockBytes);
    const std::string_view block = socket.take(static_cast<std::size_t>(limit));
    const auto size = static_cast<qint64>(block.size());
    if ((!tempFile_->isOpen() && !tempFile_->open()) || tempFile_->write(block.data(), size) != size) {
        // The request must be aborted, because the file would never reach the size of the body.
        failToWriteTempFile();
    } else if (tempFile_->pos() >= maxMultiPartSize_) {
        // Intended: a body of exactly the limit is accepted by finishHeaders() and refused here.
        qCWarning(lcHttp, "HttpRequest: received too many multipart bytes");
        status_ = abortSize;
    } else if (tempFile_->pos() >= expectedBodySize_) {
        finishMultiPartBody();
    }
}

void HttpRequest::failToWriteTempFile() {
    qCCritical(lcHttp, "HttpRequest: Error writing temp file for multipart body");
    status_ = abortBroken;
}

void HttpRequest::finishMultiPartBody() {
    if (tempFile_->flush())
        parseMultiPartFile();
    else
        failToWriteTempFile();
    tempFile_->close();
}

void HttpRequest::parseMultiPartFile() {
    qCDebug(lcHttp, "HttpRequest: parsing multipart temp file");
    const qint64 size = tempFile_->size();
    uchar *bytes = tempFile_->map(0, size);
    if (!bytes) {
        qCCritical(lcHttp, "HttpRequest: cannot read temp file, %s", qUtf8Printable(tempFile_->errorString()));
        status_ = abortBroken;
        return;
    }
    MultipartParser parser(boundary_);
    const auto result = parser.parse({reinterpret_cast<const char *>(bytes), static_cast<std::size_t>(size)});
    tempFile_->unmap(bytes);
    if (result == MultipartParser::Result::complete) {
        parameters_ = parser.form().parameters;
        uploadedFiles_ = std::move(parser.form().files);
        status_ = complete;
    } else {
        status_ = result == MultipartParser::Result::tooManyParts ? abortSize : abortBroken;
    }
}

bool HttpRequest::hasUrlEncodedBody() const {
    if (bodyData_.isEmpty())
        return false;
    const QByteArray contentType = headers_.value(QByteArrayLiteral("content-type"));
    return contentType.isEmpty() || contentType.startsWith("application/x-www-form-urlencoded");
}

void HttpRequest::decodeParameters() {
    const int question = rawPath_.indexOf('?');
    if (question >= 0)
        path_.truncate(question);
    const std::string_view query = question < 0 ? std::string_view() : view(rawPath_).substr(std::size_t(question) + 1);
    const std::string_view body = hasUrlEncodedBody() ? view(bodyData_) : std::string_view();
    if (count(query, '&') + count(body, '&') > maxEntryCount) {
        abortTooManyEntries();
        return;
    }
    parameters_.unite(url_encoding::parseParameters(query));
    parameters_.unite(url_encoding::parseParameters(body));
}

void HttpRequest::extractCookies() {
    QList<QByteArray> values = headers_.values(QByteArrayLiteral("cookie"));
    const auto add = [](qint64 sum, const QByteArray &value) { return sum + count(view(value), ';'); };
    if (std::accumulate(values.begin(), values.end(), qint64(0), add) > maxEntryCount) {
        abortTooManyEntries();
        return;
    }
    // QMultiMap returns the last inserted value first.
    std::reverse(values.begin(), values.end());
    for (const QByteArray &value : qAsConst(values))
        cookies_.insert(HttpCookie::parseHeader(value));
}

void HttpRequest::abortTooManyEntries() {
    qCWarning(lcHttp, "HttpRequest: received too many parameters or cookies");
    status_ = abortSize;
}

QByteArray HttpRequest::getPath() const {
    return url_encoding::decode(view(path_));
}

QByteArray HttpRequest::getHeader(const QByteArray &name) const {
    return headers_.value(name.toLower());
}

QList<QByteArray> HttpRequest::getHeaders(const QByteArray &name) const {
    return headers_.values(name.toLower());
}

QByteArray HttpRequest::getParameter(const QByteArray &name) const {
    return parameters_.value(name);
}

QList<QByteArray> HttpRequest::getParameters(const QByteArray &name) const {
    return parameters_.values(name);
}

QByteArray HttpRequest::getCookie(const QByteArray &name) const {
    return cookies_.value(name);
}

QTemporaryFile *HttpRequest::getUploadedFile(const QByteArray &fieldName) const {
    const auto found = uploadedFiles_.find(fieldName);
    return found == uploadedFiles_.end() ? nullptr : found->second.get();
}
