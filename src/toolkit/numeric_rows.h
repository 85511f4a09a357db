#pragma once

#include <QVariant>
#include <deque>
#include <initializer_list>
#include <string>
#include <variant>
#include <vector>

/// One number of a table; it reads back as the QVariant of the type that was put in.
using NumericCell = std::variant<int, qint64, float, double>;

/// The rows of a table of numbers, held compactly: nine bytes a cell and no allocation a row, where a list of
/// QVariants takes about forty. An hour at 150 Hz with 23 columns is 120 MB this way.
///
/// Rows may differ in length. Not thread-safe: the owner guards it where several threads meet.
class NumericRows {
public:
    void append(std::initializer_list<NumericCell> row) { append(row.begin(), row.end()); }
    void append(const std::vector<NumericCell> &row) { append(row.data(), row.data() + row.size()); }
    void clear();

    [[nodiscard]] std::size_t size() const { return rowEnds_.size(); }
    [[nodiscard]] QVariantList at(std::size_t row) const;

    /// Appends the row's cells to `text`, each in QVariant's default text form, with `separator` between
    /// them.
    void appendRowTo(std::string &text, std::size_t row, char separator) const;

private:
    void append(const NumericCell *first, const NumericCell *last);
    [[nodiscard]] std::size_t rowBegin(std::size_t row) const { return row == 0 ? 0 : rowEnds_[row - 1]; }
    template <typename Take>
    void forEachCell(std::size_t row, Take take) const;

    // Deques grow without copying what they hold, so that a long record never needs its memory twice.
    std::deque<quint64> values_;  // the cells' bits
    std::deque<quint8> types_;    // the cells' NumericCell::index()
    std::deque<std::size_t> rowEnds_;
};
