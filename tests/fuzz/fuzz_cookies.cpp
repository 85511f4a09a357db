#include "fuzz/fuzz_support.h"
#include "http/byte_text.h"
#include "http/http_cookie.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const QByteArray header = byte_text::copy(fuzz::Input(data, size).rest());
    const QList<QByteArray> parts = HttpCookie::splitCSV(header);
    for (const QByteArray &part : parts)
        fuzz::require(!part.isEmpty() && part == part.trimmed() && !part.contains('"'),
                      "a part that is empty, not trimmed or quoted");

    const QMap<QByteArray, QByteArray> cookies = HttpCookie::parseHeader(header);
    fuzz::require(cookies.size() <= parts.size() && cookies.isEmpty() == parts.isEmpty(), "more cookies than parts");
    for (auto cookie = cookies.begin(); cookie != cookies.end(); ++cookie)
        fuzz::require(header.size() >= cookie.key().size() + cookie.value().size(), "a cookie longer than the header");
    return 0;
}
