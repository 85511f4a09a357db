#include "http/http_request.h"

#include "http/body_framing.h"
#include "http/byte_text.h"
#include "http/http_cookie.h"
#include "http/http_log.h"
#include "http/http_settings.h"
#include "http/multipart_form.h"
#include "http/url_encoding.h"

#include <QTemporaryFile>
#include <algorithm>

using namespace byte_text;

namespace {

/// A QByteArray holds less than 2 GiB. Half of that leaves room for additions to a size, which is an int.
constexpr int maxLimitBytes = 1 << 30;

constexpr std::size_t maxBlockBytes = 65536;

/// The maximum number of headers, of parameters and of cookies. A map entry uses about 100 bytes in addition to its
/// text, so this limits a map of very short entries to 1 MB.
constexpr int maxEntryCount = 10000;
constexpr qint64 entryBytes = 128;

qint64 limitFrom(const HttpSettings &settings, const QString &key) {
    return qBound(0, settings.number(key, 50000000), maxLimitBytes);
}

constexpr std::string_view lineEnd = "\r\n";

std::string_view withoutLineEnd(std::string_view line) {
    return line.substr(0, line.size() - lineEnd.size());
}

bool isBlank(char character) {
    return character == ' ' || character == '\t';
}

bool isBlankOrControl(char character) {
    return static_cast<unsigned char>(character) <= ' ' || character == '\x7f';
}

qint64 count(std::string_view text, char separator) {
    return std::count(text.begin(), text.end(), separator);
}

QByteArray withoutQuotes(const QByteArray &text) {
    const bool quoted = text.size() > 1 && text.startsWith('"') && text.endsWith('"');
    return quoted ? text.mid(1, text.size() - 2) : text;
}

}  // namespace

HttpRequest::HttpRequest(const HttpSettings &settings, MemoryBudget *memory)
    : memory_(memory),
      maxSize_(limitFrom(settings, QStringLiteral("maxRequestSize"))),
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
            readBody(socket);
            break;
        case complete:
        case abortSize:
        case abortBroken:
        case abortBusy:
            return;
    }
    checkLimits();
    if (status_ == complete) {
        decodeParameters();
        extractCookies();
    }
}

void HttpRequest::checkLimits() {
    if (status_ == abortBusy)
        return;
    // Each continuation line stores the whole header again, so without a limit memory grows quadratically.
    const bool tooLarge =
        isForm() ? currentSize_ > maxMultiPartSize_ : std::max(currentSize_, storedHeaderSize_) > maxSize_;
    if (tooLarge)
        abort(abortSize, "received too many bytes");
    else if (headers_.size() > maxEntryCount)
        abort(abortSize, "received too many headers");
}

void HttpRequest::abort(RequestStatus status, const char *reason) {
    qCWarning(lcHttp, "HttpRequest: %s", reason);
    status_ = status;
}

/// Takes memory from the budget before it is allocated. If there is none, aborts the request and returns false.
bool HttpRequest::takeMemory(qint64 bytes) {
    if (status_ == abortBusy)
        return false;
    const bool granted = memory_.grow(bytes);
    if (!granted)
        abort(abortBusy, "the memory for requests is in use");
    return granted;
}

/// Appends to a buffer that may grow up to `maxBytes`. Its capacity doubles, so that each byte is copied a few times at
/// most.
void HttpRequest::append(QByteArray &buffer, std::string_view bytes, qint64 maxBytes) {
    const qint64 size = buffer.size() + static_cast<qint64>(bytes.size());
    const qint64 capacity = buffer.capacity();
    if (size > capacity) {
        const qint64 enlarged = std::max(size, std::min(2 * capacity, maxBytes));
        if (!takeMemory(enlarged - capacity))
            return;
        buffer.reserve(static_cast<int>(enlarged));
    }
    buffer.append(bytes.data(), static_cast<int>(bytes.size()));
}

// Reading stops at each line feed, so a line is complete exactly when the collected bytes end with CR LF. A line that
// arrives in one piece is not copied. `interpret` gets the line without its CR LF.
void HttpRequest::readLine(HttpInput &socket, Step interpret) {
    const std::string_view piece = socket.takeLine(static_cast<std::size_t>(maxSize_ - currentSize_ + 1));
    currentSize_ += static_cast<qint64>(piece.size());
    if (lineBuffer_.isEmpty() && endsWith(piece, lineEnd)) {
        (this->*interpret)(withoutLineEnd(piece));
        return;
    }
    append(lineBuffer_, piece, maxSize_);
    if (endsWith(view(lineBuffer_), lineEnd)) {
        (this->*interpret)(withoutLineEnd(view(lineBuffer_)));
        memory_.shrink(lineBuffer_.capacity());
        lineBuffer_.clear();
    }
}

void HttpRequest::readRequestLine(std::string_view rawLine) {
    const std::string_view line = trimmed(rawLine);
    if (line.empty() && !hasLineBreakOrNul(rawLine))
        return;
    const std::size_t first = line.find(' ');
    const std::size_t last = line.rfind(' ');
    // There must be exactly two spaces, with the request target between them.
    const bool threePieces = first != std::string_view::npos && last > first + 1 && line.find(' ', first + 1) == last;
    if (!threePieces || !contains(line.substr(last), "HTTP") || hasLineBreakOrNul(rawLine)) {
        abort(abortBroken, "received broken HTTP request, invalid first line");
        return;
    }
    // The path is stored again when its query is removed, and when it is decoded.
    if (!takeMemory(3 * static_cast<qint64>(line.size())))
        return;
    method_ = copy(trimmed(line.substr(0, first)));
    path_ = rawPath_ = copy(line.substr(first + 1, last - first - 1));
    version_ = copy(line.substr(last + 1));
    status_ = waitForHeader;
}

// Programs disagree on lines that are not plain "name: value": a proxy could find another end of the headers or of the
// body than this parser, and let requests through that it should stop. Such requests are refused.
void HttpRequest::readHeaderLine(std::string_view line) {
    const std::string_view name = line.substr(0, line.find(':'));
    if (line.empty())
        finishHeaders();
    else if (hasLineBreakOrNul(line))
        abort(abortBroken, "received a header with a line break or a NUL");
    else if (isBlank(line.front()))
        continueHeader(trimmed(line));
    else if (name.empty() || name.size() == line.size() || std::any_of(name.begin(), name.end(), isBlankOrControl))
        abort(abortBroken, "received a header without a valid name");
    else
        startHeader(copy(name).toLower(), trimmed(line.substr(name.size() + 1)));
}

void HttpRequest::startHeader(const QByteArray &name, std::string_view value) {
    currentHeader_ = name;
    addHeader(name, copy(value));
}

/// Adds a further value to the previous header. Refuses lines that could be read as a header of their own or as the end
/// of the headers, and lines that continue a header that frames the body.
void HttpRequest::continueHeader(std::string_view line) {
    const std::size_t colon = line.find(':');
    const bool isPlain = !line.empty() && (colon == 0 || colon == std::string_view::npos);
    const bool framesBody = currentHeader_ == "content-length" || currentHeader_ == "transfer-encoding";
    if (!isPlain || framesBody || currentHeader_.isEmpty())
        abort(abortBroken, "received an ambiguous continuation line");
    else
        addHeader(currentHeader_, headers_.value(currentHeader_) + ' ' + copy(line));
}

void HttpRequest::addHeader(const QByteArray &name, const QByteArray &value) {
    if (!takeMemory(name.size() + value.size() + entryBytes))
        return;
    storedHeaderSize_ += name.size() + value.size();
    headers_.insert(name, value);
}

void HttpRequest::finishHeaders() {
    readBoundary();
    const BodyFraming framing = BodyFraming::of(headers_);
    switch (framing.kind) {
        case BodyFraming::Kind::none:
            status_ = complete;
            break;
        case BodyFraming::Kind::counted:
            expectBody(framing.sizeBytes);
            break;
        case BodyFraming::Kind::chunked:
            chunkedBody_.emplace(std::max<qint64>(0, isForm() ? maxMultiPartSize_ : maxSize_ - currentSize_));
            status_ = waitForBody;
            break;
        case BodyFraming::Kind::invalid:
            abort(abortBroken, "the end of the body is ambiguous");
            break;
    }
}

void HttpRequest::readBoundary() {
    const QByteArray contentType = headers_.value(QByteArrayLiteral("content-type"));
    const int boundary = contentType.indexOf("boundary=");
    if (boundary >= 0 && contentType.startsWith("multipart/form-data"))
        boundary_ = withoutQuotes(contentType.mid(boundary + int(qstrlen("boundary="))));
}

void HttpRequest::expectBody(qint64 sizeBytes) {
    expectedBodySize_ = sizeBytes;
    status_ = waitForBody;
    if (isForm() && sizeBytes > maxMultiPartSize_)
        abort(abortSize, "expected multipart body is too large");
    else if (!isForm() && sizeBytes > maxSize_ - currentSize_)
        abort(abortSize, "expected body is too large");
}

void HttpRequest::readBody(HttpInput &socket) {
    const std::string_view block = takeBodyBlock(socket);
    if (status_ != waitForBody)
        return;
    bodySize_ += static_cast<qint64>(block.size());
    if (!isForm())
        append(bodyData_, block, chunkedBody_ ? maxSize_ : expectedBodySize_);
    else if (!block.empty())
        storeFormBlock(block);
    if (status_ == waitForBody && isBodyComplete())
        finishBody();
}

std::string_view HttpRequest::takeBodyBlock(HttpInput &socket) {
    const std::size_t before = socket.size();
    std::string_view block;
    if (chunkedBody_) {
        // One byte more than the limit is enough to exceed it.
        const auto room = static_cast<std::size_t>((isForm() ? maxMultiPartSize_ : maxSize_) - currentSize_ + 1);
        block = chunkedBody_->take(socket, std::min(room, maxBlockBytes));
    } else {
        block = socket.take(std::min(static_cast<std::size_t>(expectedBodySize_ - bodySize_), maxBlockBytes));
    }
    currentSize_ += static_cast<qint64>(before - socket.size() - (isForm() ? block.size() : 0));
    if (chunkedBody_ && chunkedBody_->state() == ChunkedBody::State::invalid)
        abort(abortBroken, "received an invalid chunk");
    else if (chunkedBody_ && chunkedBody_->state() == ChunkedBody::State::tooLarge)
        abort(abortSize, "expected body is too large");
    return block;
}

bool HttpRequest::isBodyComplete() const {
    return chunkedBody_ ? chunkedBody_->state() == ChunkedBody::State::complete : bodySize_ == expectedBodySize_;
}

void HttpRequest::storeFormBlock(std::string_view block) {
    if (!tempFile_)
        tempFile_ = std::make_unique<QTemporaryFile>();
    const auto size = static_cast<qint64>(block.size());
    if ((!tempFile_->isOpen() && !tempFile_->open()) || tempFile_->write(block.data(), size) != size) {
        // The request must be aborted, because the file would never reach the size of the body.
        failToWriteTempFile();
    } else if (bodySize_ >= maxMultiPartSize_) {
        // Intended: a body of exactly the limit is accepted by finishHeaders() and refused here.
        abort(abortSize, "received too many multipart bytes");
    }
}

void HttpRequest::failToWriteTempFile() {
    qCCritical(lcHttp, "HttpRequest: Error writing temp file for multipart body");
    status_ = abortBroken;
}

void HttpRequest::finishBody() {
    if (!tempFile_) {
        status_ = complete;
        return;
    }
    if (tempFile_->flush())
        parseMultiPartFile();
    else
        failToWriteTempFile();
    tempFile_->close();
}

void HttpRequest::parseMultiPartFile() {
    qCDebug(lcHttp, "HttpRequest: parsing multipart temp file");
    MultipartParser parser(boundary_, memory_);
    const MultipartParser::Result result = parser.parse(*tempFile_);
    switch (result) {
        case MultipartParser::Result::complete:
            parameters_ = parser.form().parameters;
            uploadedFiles_ = std::move(parser.form().files);
            status_ = complete;
            break;
        case MultipartParser::Result::tooManyParts:
            status_ = abortSize;
            break;
        case MultipartParser::Result::fileError:
            status_ = abortBroken;
            break;
        case MultipartParser::Result::noMemory:
            abort(abortBusy, "the memory for requests is in use");
            break;
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
    const qint64 pairCount = count(query, '&') + count(body, '&');
    if (pairCount > maxEntryCount)
        return abortTooManyEntries();
    if (!takeMemory(static_cast<qint64>(query.size() + body.size()) + (pairCount + 1) * entryBytes))
        return;
    parameters_.unite(url_encoding::parseParameters(query));
    parameters_.unite(url_encoding::parseParameters(body));
}

void HttpRequest::extractCookies() {
    QList<QByteArray> values = headers_.values(QByteArrayLiteral("cookie"));
    qint64 cookieCount = 0;
    qint64 cookieBytes = 0;
    for (const QByteArray &value : qAsConst(values)) {
        cookieCount += count(view(value), ';') + 1;
        cookieBytes += value.size();
    }
    if (cookieCount - values.size() > maxEntryCount)
        return abortTooManyEntries();
    // Each value is copied once in parts, and once as cookies.
    if (!takeMemory(2 * cookieBytes + cookieCount * entryBytes))
        return;
    // QMultiMap returns the last inserted value first.
    std::reverse(values.begin(), values.end());
    for (const QByteArray &value : qAsConst(values))
        cookies_.insert(HttpCookie::parseHeader(value));
}

void HttpRequest::abortTooManyEntries() {
    abort(abortSize, "received too many parameters or cookies");
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
