#pragma once

#include "http/byte_stream.h"
#include "http/http_cookie.h"

#include <QMap>
#include <QVector>

class QFile;

/// Sends one response: status line, headers and cookies once, then the body in one or more parts.
///
/// A body that is written as a single last part gets a "Content-Length" header and is sent together with the headers. A
/// body in several parts is sent in chunks. With "Connection: close" it is sent without framing instead, and closing
/// the connection marks the end of the body. Lives on the stack of the connection's thread. After the connection has
/// failed, writes do nothing.
class HttpResponse {
public:
    /// `socket` must outlive the response.
    explicit HttpResponse(HttpOutput *socket) : socket_(socket) {}

    /// Replaces the value of a header of exactly this name. Has no effect after the headers are sent.
    void setHeader(const QByteArray &name, const QByteArray &value);
    void setHeader(const QByteArray &name, int value);
    /// Replaces a cookie of the same name.
    void setCookie(const HttpCookie &cookie);
    /// The default is 200 "OK".
    void setStatus(int statusCode, const QByteArray &description);

    [[nodiscard]] const QMap<QByteArray, QByteArray> &getHeaders() const { return headers_; }
    [[nodiscard]] bool hasSentHeaders() const { return sentHeaders_; }
    [[nodiscard]] bool hasSentLastPart() const { return sentLastPart_; }

    /// Returns whether the response has no body. Write an empty last part then. A 204 may not have a "Content-Length"
    /// header, and in a 304 that would be the length of the file that the client has already.
    [[nodiscard]] bool endsWithHeaders() const { return statusCode_ == 204 || statusCode_ == 304; }

    /// Sends a part of the body. The first call also sends the headers. The last part may be empty.
    void write(const QByteArray &data, bool lastPart = false);
    /// Sends several pieces as one part, without joining them in memory.
    void write(const QVector<QByteArray> &data, bool lastPart = false);

    /// Sends `sizeBytes` bytes of an open file from `offset` on, as the whole body, with a "Content-Length" header, and
    /// without reading the file into memory. If the file turns out to be shorter, or cannot be read, the connection
    /// fails, so that the client notices.
    void writeFile(QFile &file, qint64 offset, qint64 sizeBytes);

    /// Returns whether the client can still receive data. Becomes false when a write has failed or the server stops.
    [[nodiscard]] bool isWritable() const { return socket_->isWritable(); }
    /// Limits the system's buffer for unsent data, for a body without an end.
    void limitSendBuffer(int bytes) { socket_->limitSendBuffer(bytes); }
    /// Lets the client stop reading for up to `maxPause`, for a stream whose reader may be busy. Without this call, a
    /// client that reads too slowly is disconnected, see HttpConnectionHandler.
    void allowPauses(std::chrono::milliseconds maxPause) { socket_->allowPauses(maxPause); }

private:
    void chooseFraming(qint64 size, bool lastPart);
    [[nodiscard]] QByteArray headerBlock() const;

    QMap<QByteArray, QByteArray> headers_;
    HttpOutput *const socket_;
    int statusCode_ = 200;
    QByteArray statusText_ = "OK";
    bool sentHeaders_ = false;
    bool sentLastPart_ = false;
    bool chunkedMode_ = false;
    QMap<QByteArray, HttpCookie> cookies_;
};
