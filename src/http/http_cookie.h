#pragma once

#include <QByteArray>
#include <QList>

/// One cookie, as a response sets it. A plain value; empty, 0 and false mean "not set".
struct HttpCookie {
    QByteArray name;
    QByteArray value;
    QByteArray comment = {};
    QByteArray domain = {};
    int maxAge = 0;  ///< seconds
    QByteArray path = {};
    bool secure = false;
    bool httpOnly = false;
    QByteArray sameSite = {};
    int version = 0;

    /// The value of the "Set-Cookie" header. Nothing is escaped.
    [[nodiscard]] QByteArray toByteArray() const;

    /// The parts of a header value between ";" outside double quotes: without the quotes, trimmed, empty ones left out.
    [[nodiscard]] static QList<QByteArray> splitCSV(const QByteArray &source);
};
