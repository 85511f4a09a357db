#pragma once

#include "http/chunked_body.h"
#include "http/http_input.h"
#include "http/memory_budget.h"

#include <QMap>
#include <QMultiMap>
#include <map>
#include <memory>
#include <optional>

class HttpSettings;
class QTemporaryFile;

/// Parses one request from the received data, until it is complete, too large or invalid. Used by one thread at a time.
///
/// "maxRequestSize" limits request line, headers and body together. "maxMultiPartSize" limits a multipart body, which
/// is stored in a temporary file. Both are in bytes. The default is 50,000,000 and the maximum is 1 GiB. Further limits
/// apply to the numbers of headers, parameters, cookies and files, and to the memory of continuation lines, because a
/// small request with many of these can use much memory. All memory that the request holds is taken from `memory`. The
/// request ends with `abortBusy` if the requests of other clients leave too little.
class HttpRequest {
public:
    enum RequestStatus { waitForRequest, waitForHeader, waitForBody, complete, abortSize, abortBroken, abortBusy };

    /// `memory` must outlive the request. Null means no limit for all requests together.
    explicit HttpRequest(const HttpSettings &settings, MemoryBudget *memory = nullptr);
    HttpRequest(const HttpRequest &) = delete;
    HttpRequest &operator=(const HttpRequest &) = delete;
    virtual ~HttpRequest();

    /// Consumes one line or one block of `socket`. Must be called only while there is input and the status is not
    /// final. The statuses from `complete` on are final.
    void readFromSocket(HttpInput &socket);
    [[nodiscard]] RequestStatus getStatus() const { return status_; }

    [[nodiscard]] const QByteArray &getMethod() const { return method_; }
    /// Returns the decoded path without the query.
    [[nodiscard]] QByteArray getPath() const;
    /// Returns the request target as received, including the query.
    [[nodiscard]] const QByteArray &getRawPath() const { return rawPath_; }
    [[nodiscard]] const QByteArray &getVersion() const { return version_; }

    /// Returns the last value of a header, or an empty value. Names are compared without regard to case.
    [[nodiscard]] QByteArray getHeader(const QByteArray &name) const;
    [[nodiscard]] QList<QByteArray> getHeaders(const QByteArray &name) const;
    /// Returns all headers by lower-cased name.
    [[nodiscard]] const QMultiMap<QByteArray, QByteArray> &getHeaderMap() const { return headers_; }

    /// Returns the last decoded value of a parameter, or an empty value. Parameters come from the query, the
    /// url-encoded body or the form. Names are compared exactly.
    [[nodiscard]] QByteArray getParameter(const QByteArray &name) const;
    [[nodiscard]] QList<QByteArray> getParameters(const QByteArray &name) const;
    [[nodiscard]] const QMultiMap<QByteArray, QByteArray> &getParameterMap() const { return parameters_; }

    [[nodiscard]] QByteArray getCookie(const QByteArray &name) const;
    [[nodiscard]] const QMap<QByteArray, QByteArray> &getCookieMap() const { return cookies_; }

    [[nodiscard]] const QByteArray &getBody() const { return bodyData_; }
    /// Returns the uploaded file of a form field, open and positioned at its start, or null. The request owns the file
    /// and deletes it.
    [[nodiscard]] QTemporaryFile *getUploadedFile(const QByteArray &fieldName) const;
    [[nodiscard]] const QHostAddress &getPeerAddress() const { return peerAddress_; }

private:
    using Step = void (HttpRequest::*)(std::string_view line);

    void readLine(HttpInput &socket, Step interpret);
    void readRequestLine(std::string_view rawLine);
    void readHeaderLine(std::string_view line);
    void startHeader(const QByteArray &name, std::string_view value);
    void continueHeader(std::string_view line);
    void addHeader(const QByteArray &name, const QByteArray &value);
    void finishHeaders();
    void readBoundary();
    void expectBody(qint64 sizeBytes);
    void readBody(HttpInput &socket);
    [[nodiscard]] std::string_view takeBodyBlock(HttpInput &socket);
    [[nodiscard]] bool isBodyComplete() const;
    void storeFormBlock(std::string_view block);
    void finishBody();
    void parseMultiPartFile();
    void failToWriteTempFile();
    [[nodiscard]] bool isForm() const { return !boundary_.isEmpty(); }
    void checkLimits();
    [[nodiscard]] bool hasUrlEncodedBody() const;
    void decodeParameters();
    void extractCookies();
    void abortTooManyEntries();
    void abort(RequestStatus status, const char *reason);
    [[nodiscard]] bool takeMemory(qint64 bytes);
    void append(QByteArray &buffer, std::string_view bytes, qint64 maxBytes);

    MemoryShare memory_;
    QMultiMap<QByteArray, QByteArray> headers_;
    QMultiMap<QByteArray, QByteArray> parameters_;
    QMap<QByteArray, QByteArray> cookies_;
    QByteArray bodyData_;
    QByteArray method_;
    QByteArray path_;  ///< url-encoded; includes the query until the request is complete
    QByteArray rawPath_;
    QByteArray version_;
    RequestStatus status_ = waitForRequest;
    QHostAddress peerAddress_;
    const qint64 maxSize_;
    const qint64 maxMultiPartSize_;
    qint64 currentSize_ = 0;       ///< request line, headers and body, without a multipart body
    qint64 storedHeaderSize_ = 0;  ///< names and values, which continuation lines duplicate
    qint64 expectedBodySize_ = 0;  ///< of a body that is not chunked
    qint64 bodySize_ = 0;          ///< received so far, without the framing of chunks
    std::optional<ChunkedBody> chunkedBody_;
    QByteArray currentHeader_;
    QByteArray boundary_;                       ///< empty without a multipart body
    std::unique_ptr<QTemporaryFile> tempFile_;  ///< the multipart body
    std::map<QByteArray, std::unique_ptr<QTemporaryFile>> uploadedFiles_;
    QByteArray lineBuffer_;  ///< the received part of an incomplete line
};
