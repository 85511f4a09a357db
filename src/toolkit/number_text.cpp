#include "toolkit/number_text.h"

#include <QByteArray>
#include <QLocale>
#include <algorithm>
#include <charconv>
#include <cmath>

namespace {

/// Between these bounds the shortest text never needs an exponent, and to_chars agrees with Qt digit for
/// digit.
bool isPlain(double value) {
    const double size = std::fabs(value);
    return size >= 1e-4 && size < 1e6;
}

}  // namespace

char *writeNumber(char *to, qint64 value) {
    return std::to_chars(to, to + numberTextRoom, value).ptr;
}

char *writeNumber(char *to, double value) {
    if (isPlain(value))
        return std::to_chars(to, to + numberTextRoom, value, std::chars_format::fixed).ptr;
    if (value == 0.0) {
        *to = '0';
        return to + 1;
    }
    const QByteArray text = QByteArray::number(value, 'g', QLocale::FloatingPointShortest);
    return std::copy(text.begin(), text.end(), to);
}
