#pragma once

#include <QByteArray>
#include <QList>
#include <QMap>

/// A cookie that a response sets. Empty, 0 and false mean "not set".
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
    int version = 0;  ///< always sent

    /// Returns the value of the "Set-Cookie" header. Nothing is escaped.
    [[nodiscard]] QByteArray toByteArray() const;

    /// Splits a header value at each ";" outside double quotes. Removes the quotes, trims the parts and drops empty
    /// ones.
    [[nodiscard]] static QList<QByteArray> splitCSV(const QByteArray &source);
    /// Returns the cookies in the value of one "Cookie" header. A later cookie replaces an earlier one of the same
    /// name. Intended: a part without "=" is the value of the empty name, and a part that starts with "=" is a name
    /// without a value.
    [[nodiscard]] static QMap<QByteArray, QByteArray> parseHeader(const QByteArray &value);
};
