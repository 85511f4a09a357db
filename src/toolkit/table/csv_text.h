#pragma once

#include <QList>
#include <QStringList>
#include <string>
#include <string_view>

/// Reads and writes the text of CSV files (RFC 4180). Reentrant.
namespace csv {

/// Returns the fields as one UTF-8 line without a line ending. A field with a separator, a quote or a line break is
/// quoted.
[[nodiscard]] std::string headerLine(const QStringList &fields, char separator);

struct Record {
    int line = 0;  ///< number of the first line of the record, starting at 1
    QStringList fields;
};

/// Splits the text of a file into records. Line endings are CR LF, LF or CR; the last one is optional. Blank lines are
/// skipped. A quoted field without a closing quote ends at the end of the text.
[[nodiscard]] QList<Record> parse(const QString &text, char separator);

/// Reads the numbers of a line that has no quoted fields, from left to right.
class LineNumbers {
public:
    LineNumbers(std::string_view line, char separator) : rest_(line), separator_(separator) {}

    void skip(int cellCount);

    /// Returns the number of the next cell. NaN if it is not a number, and after the last cell.
    [[nodiscard]] double next();

private:
    [[nodiscard]] std::string_view takeCell();

    std::string_view rest_;
    char separator_;
};

}  // namespace csv
