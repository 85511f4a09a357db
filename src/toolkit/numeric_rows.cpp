#include "toolkit/numeric_rows.h"

#include "toolkit/number_text.h"

#include <cstring>
#include <type_traits>

namespace {

quint64 bitsOf(const NumericCell &cell) {
    quint64 bits = 0;
    std::visit([&](auto value) { std::memcpy(&bits, &value, sizeof value); }, cell);
    return bits;
}

template <typename T>
NumericCell fromBits(quint64 bits) {
    T value;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

void appendNumberOf(std::string &text, const NumericCell &cell) {
    std::visit(
        [&](auto value) {
            using Widest = std::conditional_t<std::is_integral_v<decltype(value)>, qint64, double>;
            appendNumber(text, static_cast<Widest>(value));
        },
        cell);
}

}  // namespace

void NumericRows::clear() {
    *this = NumericRows();
}

QVariantList NumericRows::at(std::size_t row) const {
    QVariantList cells;
    for (std::size_t index = rowBegin(row); index < rowEnds_[row]; ++index)
        cells << std::visit([](auto value) { return QVariant(value); }, cell(index));
    return cells;
}

void NumericRows::appendRowTo(std::string &text, std::size_t row, char separator) const {
    const std::size_t begin = rowBegin(row);
    for (std::size_t index = begin; index < rowEnds_[row]; ++index) {
        if (index != begin)
            text += separator;
        appendNumberOf(text, cell(index));
    }
}

void NumericRows::append(const NumericCell *first, const NumericCell *last) {
    for (const NumericCell *cell = first; cell != last; ++cell) {
        values_.push_back(bitsOf(*cell));
        types_.push_back(static_cast<quint8>(cell->index()));
    }
    rowEnds_.push_back(values_.size());
}

NumericCell NumericRows::cell(std::size_t index) const {
    const quint64 bits = values_[index];
    switch (types_[index]) {
        case 0:
            return fromBits<int>(bits);
        case 1:
            return fromBits<qint64>(bits);
        case 2:
            return fromBits<float>(bits);
        default:
            return fromBits<double>(bits);
    }
}
