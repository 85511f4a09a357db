#pragma once

#include <QByteArray>
#include <QMultiMap>
#include <string_view>

/// The encoding of URLs, and of forms that travel like a URL's query ("a=1&b=x%20y"). Bytewise, without regard to
/// character sets.
namespace url_encoding {

/// "+" becomes a space and "%" with exactly two hexadecimal digits the byte they name; all else stays as it is.
[[nodiscard]] QByteArray decode(std::string_view text);

/// Adds the decoded pairs of `text` to `parameters`; a piece without "=" is a name with an empty value.
void addParameters(std::string_view text, QMultiMap<QByteArray, QByteArray> &parameters);

}  // namespace url_encoding
