#include "http/http_cookie.h"

#include <algorithm>

QByteArray HttpCookie::toByteArray() const {
    QByteArray text = name + '=' + value;
    const auto add = [&text](const char *attribute, const QByteArray &setting) {
        if (!setting.isEmpty())
            text += attribute + setting;
    };
    add("; Comment=", comment);
    add("; Domain=", domain);
    if (maxAge != 0)
        add("; Max-Age=", QByteArray::number(maxAge));
    add("; Path=", path);
    if (secure)
        text += "; Secure";
    if (httpOnly)
        text += "; HttpOnly";
    add("; SameSite=", sameSite);
    return text + "; Version=" + QByteArray::number(version);
}

QList<QByteArray> HttpCookie::splitCSV(const QByteArray &source) {
    QList<QByteArray> parts;
    QByteArray part;
    const auto finishPart = [&] {
        part = part.trimmed();
        if (!part.isEmpty())
            parts.append(part);
        part.clear();
    };
    bool quoted = false;
    for (const char c : source) {
        if (c == '"')
            quoted = !quoted;
        else if (c == ';' && !quoted)
            finishPart();
        else
            part += c;
    }
    finishPart();
    return parts;
}

QMap<QByteArray, QByteArray> HttpCookie::parseHeader(const QByteArray &value) {
    QMap<QByteArray, QByteArray> cookies;
    for (const QByteArray &part : splitCSV(value)) {
        const int equals = part.indexOf('=');
        if (equals == 0)
            cookies.insert(part, {});
        else
            cookies.insert(part.left(std::max(equals, 0)).trimmed(), part.mid(equals + 1).trimmed());
    }
    return cookies;
}
