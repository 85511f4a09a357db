#include "http/url_encoding.h"

#include "http/byte_text.h"

#include <algorithm>

using namespace byte_text;

namespace {

/// Returns the value of a hexadecimal digit, or -1.
int hexDigit(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

/// Returns the byte value of the escape at the start of `text`, or -1 if it is invalid. Library functions that parse
/// numbers are unsuitable, because they accept signs and spaces.
int escapedByte(std::string_view text) {
    if (text.size() < 3)
        return -1;
    const int high = hexDigit(text[1]);
    const int low = hexDigit(text[2]);
    return high < 0 || low < 0 ? -1 : high * 16 + low;
}

}  // namespace

QByteArray url_encoding::decode(std::string_view text) {
    QByteArray decoded = copy(text);
    if (text.find_first_of("+%") == std::string_view::npos)
        return decoded;
    char *end = decoded.data();
    for (std::size_t i = 0; i < text.size(); ++i) {
        const int byte = text[i] == '%' ? escapedByte(text.substr(i)) : -1;
        if (byte >= 0)
            i += 2;
        *end++ = byte >= 0 ? static_cast<char>(byte) : text[i] == '+' ? ' ' : text[i];
    }
    decoded.truncate(static_cast<int>(end - decoded.constData()));
    return decoded;
}

QMultiMap<QByteArray, QByteArray> url_encoding::parseParameters(std::string_view text) {
    QMultiMap<QByteArray, QByteArray> parameters;
    while (!text.empty()) {
        const std::string_view pair = text.substr(0, text.find('&'));
        text.remove_prefix(std::min(text.size(), pair.size() + 1));
        const std::size_t equals = pair.find('=');
        if (equals != std::string_view::npos)
            parameters.insert(decode(trimmed(pair.substr(0, equals))), decode(trimmed(pair.substr(equals + 1))));
        else if (!pair.empty())
            parameters.insert(decode(pair), {});
    }
    return parameters;
}
