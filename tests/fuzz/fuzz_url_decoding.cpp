#include "fuzz/fuzz_support.h"
#include "http/byte_text.h"
#include "http/url_encoding.h"

#include <cctype>

namespace {

/// The definition taken word for word, at the price of moving the rest of the text for each escape.
QByteArray decodedStepByStep(QByteArray text) {
    text.replace('+', ' ');
    for (int percent = text.indexOf('%'); percent >= 0; percent = text.indexOf('%', percent + 1)) {
        const QByteArray digits = text.mid(percent + 1, 2);
        const auto isHex = [](char c) { return std::isxdigit(static_cast<unsigned char>(c)) != 0; };
        if (digits.size() == 2 && isHex(digits[0]) && isHex(digits[1]))
            text.replace(percent, 3, QByteArray(1, static_cast<char>(digits.toInt(nullptr, 16))));
    }
    return text;
}

QMultiMap<QByteArray, QByteArray> parametersStepByStep(const QByteArray &text) {
    QMultiMap<QByteArray, QByteArray> parameters;
    for (const QByteArray &piece : text.split('&')) {
        const int equals = piece.indexOf('=');
        if (equals >= 0)
            parameters.insert(decodedStepByStep(piece.left(equals).trimmed()),
                              decodedStepByStep(piece.mid(equals + 1).trimmed()));
        else if (!piece.isEmpty())
            parameters.insert(decodedStepByStep(piece), "");
    }
    return parameters;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const std::string_view text = fuzz::Input(data, size).rest();
    fuzz::require(url_encoding::decode(text) == decodedStepByStep(byte_text::copy(text)), "decoded otherwise");

    QMultiMap<QByteArray, QByteArray> parameters;
    url_encoding::addParameters(text, parameters);
    fuzz::require(parameters == parametersStepByStep(byte_text::copy(text)), "split otherwise");
    return 0;
}
