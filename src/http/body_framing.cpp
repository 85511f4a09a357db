#include "http/body_framing.h"

#include "http/byte_text.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <optional>

using namespace byte_text;

namespace {

constexpr std::string_view digits = "0123456789";

/// Returns the number, or nothing if `text` has digits but is not a decimal number without a sign.
std::optional<qint64> decimal(std::string_view text) {
    if (text.find_first_of(digits) == std::string_view::npos)
        return 0;
    if (text.find_first_not_of(digits) != std::string_view::npos)
        return std::nullopt;
    quint32 number = 0;
    const bool inRange = std::from_chars(text.data(), text.data() + text.size(), number).ec == std::errc();
    return inRange ? number : std::numeric_limits<quint32>::max();
}

/// Returns the number that all lengths are equal to, or nothing. A value may be a list ("3, 3").
std::optional<qint64> commonLength(const QList<QByteArray> &values) {
    std::optional<qint64> common;
    for (const QByteArray &value : values) {
        for (const QByteArray &item : value.split(',')) {
            const std::optional<qint64> length = decimal(trimmed(view(item)));
            if (!length || (common && *common != *length))
                return std::nullopt;
            common = length;
        }
    }
    return common;
}

}  // namespace

BodyFraming BodyFraming::of(const QMultiMap<QByteArray, QByteArray> &headers) {
    const QList<QByteArray> lengths = headers.values(QByteArrayLiteral("content-length"));
    const QList<QByteArray> codings = headers.values(QByteArrayLiteral("transfer-encoding"));
    if (!codings.isEmpty()) {
        const bool valid = lengths.isEmpty() && codings.size() == 1 && equalsIgnoringCase(codings.first(), "chunked");
        return {valid ? Kind::chunked : Kind::invalid, 0};
    }
    if (lengths.isEmpty())
        return {};
    const std::optional<qint64> length = commonLength(lengths);
    if (!length)
        return {Kind::invalid, 0};
    return {*length > 0 ? Kind::counted : Kind::none, *length};
}
