#include "toolkit/table/number_text.h"

#include <QByteArray>
#include <QLocale>
#include <algorithm>
#include <charconv>
#include <cmath>

namespace {

/// In this range, std::to_chars() writes the same text as Qt, without an exponent.
bool isPlain(double value) {
    const double size = std::fabs(value);
    return size >= 1e-4 && size < 1e6;
}

}  // namespace

char *number_text::write(char *to, qint64 value) {
    return std::to_chars(to, to + number_text::maxBytes, value).ptr;
}

char *number_text::write(char *to, double value) {
    if (isPlain(value))
        return std::to_chars(to, to + number_text::maxBytes, value, std::chars_format::fixed).ptr;
    if (value == 0.0) {
        *to = '0';
        return to + 1;
    }
    const QByteArray text = QByteArray::number(value, 'g', QLocale::FloatingPointShortest);
    return std::copy(text.begin(), text.end(), to);
}
