#include "toolkit/table/numeric_rows.h"

#include "toolkit/table/number_text.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <type_traits>

namespace {

quint64 bitsOf(const NumericCell &cell) {
    quint64 bits = 0;
    std::visit([&](auto value) { std::memcpy(&bits, &value, sizeof value); }, cell);
    return bits;
}

template <typename T>
T fromBits(quint64 bits) {
    T value;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

NumericCell cell(quint64 bits, quint8 type) {
    switch (type) {
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

char *writeCell(char *to, const NumericCell &cell) {
    return std::visit(
        [to](auto value) {
            using Widest = std::conditional_t<std::is_integral_v<decltype(value)>, qint64, double>;
            return number_text::write(to, static_cast<Widest>(value));
        },
        cell);
}

}  // namespace

void NumericRows::clear() {
    *this = NumericRows();
}

NumericRows NumericRows::slice(std::size_t first, std::size_t maxCount) const {
    NumericRows copy;
    const std::size_t last = std::min(size(), first + maxCount);
    if (first >= last)
        return copy;
    const std::size_t begin = rowBegin(first);
    const auto from = static_cast<std::ptrdiff_t>(begin);
    const auto to = static_cast<std::ptrdiff_t>(rowBegin(last));
    copy.values_.assign(values_.begin() + from, values_.begin() + to);
    copy.types_.assign(types_.begin() + from, types_.begin() + to);
    for (std::size_t row = first; row < last; ++row)
        copy.rowEnds_.push_back(rowEnds_[row] - begin);
    return copy;
}

QVariantList NumericRows::at(std::size_t row) const {
    QVariantList cells;
    forEachCell(
        row, [&](const NumericCell &cell) { cells << std::visit([](auto value) { return QVariant(value); }, cell); });
    return cells;
}

double NumericRows::number(std::size_t row, std::size_t column) const {
    const std::size_t index = rowBegin(row) + column;
    return std::visit([](auto value) { return static_cast<double>(value); }, cell(values_[index], types_[index]));
}

std::string NumericRows::text(std::size_t row, char separator) const {
    const std::size_t cellCount = rowEnds_[row] - rowBegin(row);
    std::string text(cellCount * (number_text::maxBytes + 1), '\0');
    char *end = text.data();
    forEachCell(row, [&](const NumericCell &cell) {
        if (end != text.data())
            *end++ = separator;
        end = writeCell(end, cell);
    });
    text.resize(static_cast<std::size_t>(end - text.data()));
    return text;
}

void NumericRows::append(const NumericCell *first, const NumericCell *last) {
    const std::size_t begin = values_.size();
    try {
        for (const NumericCell *cell = first; cell != last; ++cell) {
            values_.push_back(bitsOf(*cell));
            types_.push_back(static_cast<quint8>(cell->index()));
        }
        rowEnds_.push_back(values_.size());
    } catch (const std::bad_alloc &) {
        // Cells of an incomplete row would belong to the next row.
        values_.resize(begin);
        types_.resize(begin);
        throw;
    }
}

template <typename Take>
void NumericRows::forEachCell(std::size_t row, Take take) const {
    const auto begin = static_cast<std::ptrdiff_t>(rowBegin(row));
    const auto end = values_.begin() + static_cast<std::ptrdiff_t>(rowEnds_[row]);
    auto type = types_.begin() + begin;
    for (auto value = values_.begin() + begin; value != end; ++value, ++type)
        take(cell(*value, *type));
}
