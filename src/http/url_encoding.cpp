#include "http/url_encoding.h"

#include "http/byte_text.h"

#include <algorithm>

using namespace byte_text;

namespace {

/// -1 for what is no hexadecimal digit.
int hexDigit(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

/// The byte that the escape at the start of `text` stands for, or -1. Number parsers of a library would not do: they
/// take signs and blanks for a part of the number.
int escapedByte(std::string_view text) {
    if (text.size() < 3)
        return -1;
    const int high = hexDigit(text[1]);
    const int low = hexDigit(text[2]);
    return high < 0 || low < 0 ? -1 : high * 16 + low;
}

void addParameter(std::string_view piece, QMultiMap<QByteArray, QByteArray> &parameters) {
    const std::size_t equals = piece.find('=');
    if (equals != std::string_view::npos)
        parameters.insert(url_encoding::decode(trimmed(piece.substr(0, equals))),
                          url_encoding::decode(trimmed(piece.substr(equals + 1))));
    else if (!piece.empty())
        parameters.insert(url_encoding::decode(piece), {});
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

void url_encoding::addParameters(std::string_view text, QMultiMap<QByteArray, QByteArray> &parameters) {
    while (!text.empty()) {
        const std::string_view piece = text.substr(0, text.find('&'));
        addParameter(piece, parameters);
        text.remove_prefix(std::min(text.size(), piece.size() + 1));
    }
}
