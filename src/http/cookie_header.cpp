#include "http/cookie_header.h"

#include "http/http_cookie.h"

#include <algorithm>

void cookie_header::addCookies(const QByteArray &headerValue, QMap<QByteArray, QByteArray> &cookies) {
    for (const QByteArray &part : HttpCookie::splitCSV(headerValue)) {
        const int equals = part.indexOf('=');
        if (equals == 0)
            cookies.insert(part, {});
        else
            cookies.insert(part.left(std::max(equals, 0)).trimmed(), part.mid(equals + 1).trimmed());
    }
}
