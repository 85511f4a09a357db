#include "http/http_response.h"

#include "http/byte_stream.h"
#include "http/byte_text.h"

#include <numeric>

void HttpResponse::setHeader(const QByteArray &name, const QByteArray &value) {
    headers_.insert(name, value);
}

void HttpResponse::setHeader(const QByteArray &name, int value) {
    headers_.insert(name, QByteArray::number(value));
}

void HttpResponse::setCookie(const HttpCookie &cookie) {
    cookies_.insert(cookie.name, cookie);
}

void HttpResponse::setStatus(int statusCode, const QByteArray &description) {
    statusCode_ = statusCode;
    statusText_ = description;
}

void HttpResponse::write(const QByteArray &data, bool lastPart) {
    write(QVector<QByteArray>{data}, lastPart);
}

void HttpResponse::write(const QVector<QByteArray> &data, bool lastPart) {
    const qint64 size = std::accumulate(data.begin(), data.end(), qint64(0),
                                        [](qint64 sum, const QByteArray &piece) { return sum + piece.size(); });
    // Headers and body are sent in one write: if they were sent separately, the body could wait 40 ms for the client's
    // delayed acknowledgement of the headers.
    QVector<QByteArray> pieces;
    if (!sentHeaders_) {
        chooseFraming(size, lastPart);
        pieces.append(headerBlock());
    }
    if (size > 0 && chunkedMode_)
        pieces << QByteArray::number(size, 16) + "\r\n" << data << QByteArrayLiteral("\r\n");
    else if (size > 0)
        pieces << data;
    if (lastPart && chunkedMode_)
        pieces << QByteArrayLiteral("0\r\n\r\n");
    sentHeaders_ = true;
    if (!pieces.isEmpty())
        socket_->write(pieces);
    if (lastPart)
        sentLastPart_ = true;
}

void HttpResponse::writeFile(QFile &file, qint64 offset, qint64 sizeBytes) {
    setHeader("Content-Length", QByteArray::number(sizeBytes));
    const QByteArray head = headerBlock();
    // Before the file is read, which may throw: nothing may follow a part of its bytes.
    sentHeaders_ = true;
    sentLastPart_ = true;
    socket_->writeFile(head, file, offset, sizeBytes);
}

void HttpResponse::chooseFraming(qint64 size, bool lastPart) {
    if (endsWithHeaders())
        return;
    if (lastPart) {
        setHeader("Content-Length", QByteArray::number(size));
        return;
    }
    const QByteArray connection = headers_.value("Connection", headers_.value("connection"));
    if (!byte_text::equalsIgnoringCase(connection, "close")) {
        setHeader("Transfer-Encoding", "chunked");
        chunkedMode_ = true;
    }
}

QByteArray HttpResponse::headerBlock() const {
    QByteArray block;
    constexpr int typicalHeaderBytes = 512;
    block.reserve(typicalHeaderBytes);
    block.append("HTTP/1.1 ").append(QByteArray::number(statusCode_)).append(' ').append(statusText_).append("\r\n");
    for (auto header = headers_.begin(); header != headers_.end(); ++header)
        block.append(header.key()).append(": ").append(header.value()).append("\r\n");
    for (const HttpCookie &cookie : cookies_)
        block.append("Set-Cookie: ").append(cookie.toByteArray()).append("\r\n");
    return block.append("\r\n");
}
