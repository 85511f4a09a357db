#pragma once

#include "http/http_input.h"

#include <QMap>
#include <QMultiMap>
#include <map>
#include <memory>

class HttpSettings;
class QTemporaryFile;

/// One request as it arrives: fed with what the client has sent, until it is complete, too large or broken.
///
/// "maxRequestSize" bounds request line, headers and body together, "maxMultiPartSize" a multipart body, which goes to
/// a temporary file instead of memory; both are bytes, 50,000,000 unless set, and count up to 1 GiB. What few bytes
/// would blow up to many in memory (continued header lines, hundreds of thousands of parameters, open files) is bounded
/// as well. Used by one thread at a time.
class HttpRequest {
public:
    enum RequestStatus { waitForRequest, waitForHeader, waitForBody, complete, abortSize, abortBroken };

    explicit HttpRequest(const HttpSettings &settings);
    HttpRequest(const HttpRequest &) = delete;
    HttpRequest &operator=(const HttpRequest &) = delete;
    virtual ~HttpRequest();

    /// Consumes one line or one block of what has arrived. To be called as long as there is input and the status is
    /// not one of the last three, which are final.
    void readFromSocket(HttpInput &socket);
    [[nodiscard]] RequestStatus getStatus() const { return status_; }

    [[nodiscard]] const QByteArray &getMethod() const { return method_; }
    /// Without the query, url-decoded.
    [[nodiscard]] QByteArray getPath() const;
    /// As received, query included.
    [[nodiscard]] const QByteArray &getRawPath() const { return rawPath_; }
    [[nodiscard]] const QByteArray &getVersion() const { return version_; }

    /// The value that came last under this name, whatever its case; empty if there is none.
    [[nodiscard]] QByteArray getHeader(const QByteArray &name) const;
    [[nodiscard]] QList<QByteArray> getHeaders(const QByteArray &name) const;
    /// By lower-cased name.
    [[nodiscard]] const QMultiMap<QByteArray, QByteArray> &getHeaderMap() const { return headers_; }

    /// The same for the decoded parameters of query, url-encoded body and form; names in exactly their case.
    [[nodiscard]] QByteArray getParameter(const QByteArray &name) const;
    [[nodiscard]] QList<QByteArray> getParameters(const QByteArray &name) const;
    [[nodiscard]] const QMultiMap<QByteArray, QByteArray> &getParameterMap() const { return parameters_; }

    [[nodiscard]] QByteArray getCookie(const QByteArray &name) const;
    [[nodiscard]] const QMap<QByteArray, QByteArray> &getCookieMap() const { return cookies_; }

    [[nodiscard]] const QByteArray &getBody() const { return bodyData_; }
    /// The file of a form's field, open at its start; null if there is none. It ends with the request.
    [[nodiscard]] QTemporaryFile *getUploadedFile(const QByteArray &fieldName) const;
    [[nodiscard]] const QHostAddress &getPeerAddress() const { return peerAddress_; }

private:
    using Step = void (HttpRequest::*)(std::string_view line);

    void readLine(HttpInput &socket, Step interpret);
    void readRequestLine(std::string_view line);
    void readHeaderLine(std::string_view line);
    void addHeader(const QByteArray &name, const QByteArray &value);
    void finishHeaders();
    void expectBody(qint64 room, const char *tooLarge);
    void readBody(HttpInput &socket);
    void readMultiPartBody(HttpInput &socket);
    void finishMultiPartBody();
    void parseMultiPartFile();
    void failToWriteTempFile();
    [[nodiscard]] bool hasTooManyBytes() const;
    [[nodiscard]] bool hasUrlEncodedBody() const;
    void decodeParameters();
    void extractCookies();
    void abortManyEntries();

    QMultiMap<QByteArray, QByteArray> headers_;
    QMultiMap<QByteArray, QByteArray> parameters_;
    QMap<QByteArray, QByteArray> cookies_;
    QByteArray bodyData_;
    QByteArray method_;
    QByteArray path_;  ///< still url-encoded; without the query once the request is complete
    QByteArray rawPath_;
    QByteArray version_;
    RequestStatus status_ = waitForRequest;
    QHostAddress peerAddress_;
    const qint64 maxSize_;
    const qint64 maxMultiPartSize_;
    qint64 currentSize_ = 0;       ///< request line, headers and body, but for a multipart body
    qint64 storedHeaderSize_ = 0;  ///< names and values; exceeds what was received only by continued lines
    qint64 expectedBodySize_ = 0;
    QByteArray currentHeader_;
    QByteArray boundary_;                       ///< empty: no multipart body
    std::unique_ptr<QTemporaryFile> tempFile_;  ///< the multipart body as received
    std::map<QByteArray, std::unique_ptr<QTemporaryFile>> uploadedFiles_;
    QByteArray lineBuffer_;  ///< of a line whose end has not arrived
};
