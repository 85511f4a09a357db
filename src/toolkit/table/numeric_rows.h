#pragma once

#include <QVariant>
#include <deque>
#include <initializer_list>
#include <string>
#include <variant>
#include <vector>

/// One number of a table.
using NumericCell = std::variant<int, qint64, float, double>;

/// The rows of a table of numbers. Rows may have different lengths. Not thread-safe.
///
/// A cell takes 9 bytes, and a row has no separate allocation. One hour at 150 Hz with 23 columns takes 120 MB. A
/// QVariant would take about 40 bytes per cell. If memory runs out, append() throws std::bad_alloc and changes nothing.
class NumericRows {
public:
    void append(std::initializer_list<NumericCell> row) { append(row.begin(), row.end()); }
    void append(const std::vector<NumericCell> &row) { append(row.data(), row.data() + row.size()); }
    void clear();

    [[nodiscard]] std::size_t size() const { return rowEnds_.size(); }

    /// Returns a copy of up to `maxCount` rows, starting at row `first`. The copy is empty if there is no such row.
    [[nodiscard]] NumericRows slice(std::size_t first, std::size_t maxCount) const;

    /// Returns the cells of a row with their original types.
    [[nodiscard]] QVariantList at(std::size_t row) const;

    /// Returns one cell of a row.
    [[nodiscard]] double number(std::size_t row, std::size_t column) const;

    /// Returns the cells of a row as text, separated by `separator`. See number_text for the format.
    [[nodiscard]] std::string text(std::size_t row, char separator) const;

private:
    void append(const NumericCell *first, const NumericCell *last);
    [[nodiscard]] std::size_t rowBegin(std::size_t row) const { return row == 0 ? 0 : rowEnds_[row - 1]; }
    template <typename Take>
    void forEachCell(std::size_t row, Take take) const;

    // A deque grows without copying its content. A vector would need twice the memory while it grows.
    std::deque<quint64> values_;  // the bits of the cells
    std::deque<quint8> types_;    // NumericCell::index() of the cells
    std::deque<std::size_t> rowEnds_;
};
