#include "toolkit/number_text.h"

#include <QByteArray>
#include <QLocale>
#include <charconv>
#include <cmath>

namespace {

template <typename... Format>
void appendChars(std::string &text, Format... value) {
    char buffer[32];
    const std::to_chars_result result = std::to_chars(buffer, buffer + sizeof buffer, value...);
    text.append(buffer, result.ptr);
}

/// Between these bounds the shortest text never needs an exponent, and to_chars agrees with Qt digit for
/// digit.
bool isPlain(double value) {
    const double size = std::fabs(value);
    return size >= 1e-4 && size < 1e6;
}

}  // namespace

void appendNumber(std::string &text, qint64 value) {
    appendChars(text, value);
}

void appendNumber(std::string &text, double value) {
    if (value == 0.0) {
        text += '0';
    } else if (isPlain(value)) {
        appendChars(text, value, std::chars_format::fixed);
    } else {
        text += QByteArray::number(value, 'g', QLocale::FloatingPointShortest).constData();
    }
}
