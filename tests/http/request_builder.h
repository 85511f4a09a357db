#pragma once

#include "http/byte_text.h"
#include "support/request_outcome.h"

#include <QRandomGenerator>
#include <QTest>

/// Functions that build the text of a request, and feed it in pieces of different sizes.
namespace request_builder {

inline QByteArray post(const QByteArray &contentType, const QByteArray &body) {
    return "POST / HTTP/1.1\r\nContent-Type: " + contentType +
           "\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" + body;
}

/// Returns a form with the boundary "xyz". `parts` are results of part().
inline QByteArray form(const QByteArray &parts) {
    return post("multipart/form-data; boundary=xyz", parts + "--xyz--\r\n");
}

inline QByteArray part(const QByteArray &disposition, const QByteArray &content) {
    return "--xyz\r\nContent-Disposition: form-data;" + disposition + "\r\n\r\n" + content + "\r\n";
}

/// Feeds `input` to new requests: in one piece, byte by byte, and in pieces of random size. Calls `check` with each
/// request and the rest of the input. Expects that each request logs `warning`, unless it is empty.
inline void feedInPieces(const QByteArray &input, const RequestLimits &limits, const QByteArray &warning,
                         const std::function<void(const HttpRequest &, const QByteArray &rest)> &check) {
    QRandomGenerator random(1);
    const std::function<std::size_t()> pieceSizes[] = {
        request_outcome::wholeInput,
        [] { return std::size_t(1); },
        [&random] { return std::size_t(random.bounded(1, 7)); },
        [&random] { return std::size_t(random.bounded(1, 60)); },
    };
    for (const auto &pieceSize : pieceSizes) {
        if (!warning.isEmpty())
            QTest::ignoreMessage(QtWarningMsg, "HttpRequest: " + warning);
        HttpRequest request(limits.settings());
        check(request, byte_text::copy(request_outcome::feed(request, byte_text::view(input), pieceSize)));
    }
}

}  // namespace request_builder
