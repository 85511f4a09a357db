#include "api/v1/byte_range.h"

#include <algorithm>

using namespace api_v1;

namespace {

/// Returns nothing if `text` is not a whole number that fits.
std::optional<qint64> number(const QByteArray &text) {
    if (!std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; }))
        return std::nullopt;
    bool ok = false;
    const qint64 value = text.toLongLong(&ok);
    return ok ? std::optional(value) : std::nullopt;
}

}  // namespace

std::optional<ByteRange> api_v1::parseByteRange(const QByteArray &header, qint64 fileBytes) {
    const QByteArray unit = "bytes=";
    const QByteArray text = header.mid(unit.size()).trimmed();
    const int dash = text.indexOf('-');
    if (!header.startsWith(unit) || dash < 0)
        return std::nullopt;
    const std::optional<qint64> first = number(text.left(dash));
    const std::optional<qint64> last = number(text.mid(dash + 1));
    if (dash == 0 && last) {  // the last bytes
        const qint64 sizeBytes = std::min(*last, fileBytes);
        return ByteRange{fileBytes - sizeBytes, sizeBytes};
    }
    const bool isOpen = dash == text.size() - 1;
    if (!first || (!isOpen && (!last || *last < *first)))
        return std::nullopt;
    const qint64 end = isOpen ? fileBytes : std::min(*last, fileBytes - 1) + 1;
    return ByteRange{*first, std::max<qint64>(0, end - *first)};
}
