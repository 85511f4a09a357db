#pragma once

#include <QByteArray>
#include <QFile>
#include <optional>
#include <string_view>

/// Reads a table of a journal, or a record file, up to its last complete row. Private to the recovery.
///
/// A crash may leave the last row incomplete, and a power failure may leave zeros after it. Both are skipped. Any other
/// text that is not a row of numbers is damage.
class JournalRows {
public:
    enum class Result { Lines, End, Damaged, ReadFailed };

    JournalRows(const QString &path, QByteArray header);

    /// Returns the header of record files.
    [[nodiscard]] static QByteArray recordHeader();

    /// Reads the next lines, about 1 MiB. lines() returns them if the result is Lines.
    [[nodiscard]] Result read();

    /// Returns complete lines with their line endings. The first ones begin with the header. Valid until read().
    [[nodiscard]] std::string_view lines() const { return lines_; }

    /// Returns the next row with its line ending, or std::nullopt if there is none. Valid until the next call. Use it
    /// instead of read().
    [[nodiscard]] std::optional<std::string_view> nextRow();

    /// Reads all rows, and returns the number of rows of the file at `path` if it begins with them.
    [[nodiscard]] std::optional<quint64> rowCountOfContinuation(const QString &path);

    /// Returns the number of rows read so far, without the header.
    [[nodiscard]] quint64 rowCount() const { return lineCount_ == 0 ? 0 : lineCount_ - 1; }
    [[nodiscard]] QString problem() const { return file_.errorString(); }

private:
    [[nodiscard]] bool isValidLine(std::string_view line) const;
    [[nodiscard]] bool takeLines();

    QFile file_;
    const QByteArray header_;
    const int separatorCount_;
    QByteArray buffer_;
    std::string_view lines_;
    std::string_view rest_;  ///< of the lines, for nextRow()
    quint64 lineCount_ = 0;
};
