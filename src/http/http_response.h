#pragma once

#include "http/http_cookie.h"

#include <QMap>
#include <QVector>

class HttpOutput;

/// One answer on its way to the client: status line, headers and cookies once, then the body in one or more parts.
///
/// A body that is written in one last part gets a "Content-Length" and leaves together with the headers. A body in
/// several parts goes out in chunks, or, if the response announces "Connection: close", as it is, its end marked by the
/// end of the connection. Lives on the stack of the connection's thread; a connection that is gone swallows writes.
class HttpResponse {
public:
    /// `socket` outlives the response.
    explicit HttpResponse(HttpOutput *socket) : socket_(socket) {}

    /// Replaces a value that was set before under exactly this name. Without effect once the headers are sent.
    void setHeader(const QByteArray &name, const QByteArray &value);
    void setHeader(const QByteArray &name, int value);
    /// Replaces a cookie of the same name.
    void setCookie(const HttpCookie &cookie);
    /// 200 "OK" unless set.
    void setStatus(int statusCode, const QByteArray &description);

    [[nodiscard]] const QMap<QByteArray, QByteArray> &getHeaders() const { return headers_; }
    [[nodiscard]] bool hasSentLastPart() const { return sentLastPart_; }

    /// Sends a part of the body, before it the headers if they have not been sent. The last part may be empty.
    void write(const QByteArray &data, bool lastPart = false);
    /// The same for a part that lies in several places: it is sent as one, without being joined in memory.
    void write(const QVector<QByteArray> &data, bool lastPart = false);

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
