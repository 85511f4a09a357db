#pragma once

#include <QByteArray>
#include <QFile>
#include <atomic>
#include <string_view>

/// Reads the row table of a journal up to its last complete row. Private to JournalRecovery.
///
/// A crash may leave the last row incomplete, and a power failure may leave zeros after it. Both are skipped. Any other
/// text that is not a row of numbers is damage.
class JournalRows {
public:
    enum class Result { Lines, End, Damaged, ReadFailed };

    JournalRows(const QString &path, QByteArray header);

    /// Reads the next lines, about 1 MiB. lines() returns them if the result is Lines.
    [[nodiscard]] Result read();

    /// Returns complete lines with their line endings. The first ones begin with the header. Valid until read().
    [[nodiscard]] std::string_view lines() const { return lines_; }

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
    quint64 lineCount_ = 0;
};
