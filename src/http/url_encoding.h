#pragma once

#include <QByteArray>
#include <QMultiMap>
#include <string_view>

/// Decoding of URLs and of url-encoded forms ("a=1&b=x%20y"). Works on bytes, without character set conversion.
namespace url_encoding {

/// Replaces "+" by a space and "%" followed by two hexadecimal digits by the byte with that value. Invalid escapes are
/// kept.
[[nodiscard]] QByteArray decode(std::string_view text);

/// Returns the decoded pairs of `text`. A pair without "=" is a name with an empty value.
[[nodiscard]] QMultiMap<QByteArray, QByteArray> parseParameters(std::string_view text);

}  // namespace url_encoding
