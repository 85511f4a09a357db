#include "fuzz/fuzz_support.h"
#include "http/byte_text.h"
#include "http/cookie_header.h"
#include "http/http_cookie.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const QByteArray header = byte_text::copy(fuzz::Input(data, size).rest());
    const QList<QByteArray> parts = HttpCookie::splitCSV(header);
    for (const QByteArray &part : parts)
        fuzz::require(!part.isEmpty() && part == part.trimmed() && !part.contains('"'), "a part that is not clean");

    QMap<QByteArray, QByteArray> cookies;
    cookie_header::addCookies(header, cookies);
    fuzz::require(cookies.size() <= parts.size() && cookies.isEmpty() == parts.isEmpty(), "a cookie from nowhere");
    for (auto cookie = cookies.begin(); cookie != cookies.end(); ++cookie)
        fuzz::require(header.size() >= cookie.key().size() + cookie.value().size(), "a cookie that grew");
    return 0;
}
