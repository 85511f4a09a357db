#pragma once

#include "toolkit/table/numeric_rows.h"

#include <QMap>
#include <QObject>
#include <QStringList>

class QSaveFile;

/// A table of numbers with named columns that is saved to and loaded from a CSV file. Not thread-safe.
///
/// The file follows RFC 4180: commas, CR LF, a header row, and UTF-8 without a byte order mark. The decimal separator
/// is a point in every locale. The whole table is in memory (see NumericRows). save() and load() return false after a
/// failure and log one warning with the file and the reason.
class NumericTableCSV : public QObject {
    Q_OBJECT

public:
    explicit NumericTableCSV(QObject *parent = nullptr);

    void setHeaders(const QStringList &headers);
    [[nodiscard]] QStringList headers() const { return headers_; }
    [[nodiscard]] const NumericRows &rows() const { return rows_; }

    /// Returns the header row as it is written to files, with its line ending.
    [[nodiscard]] std::string headerLine() const;
    /// Returns the row at `index` of `rows` as it is written to files, with its line ending.
    [[nodiscard]] static std::string rowLine(const NumericRows &rows, std::size_t index);

    /// Writes the table to an open file. Returns false after a failure, see QSaveFile::errorString(). Logs nothing.
    [[nodiscard]] bool write(QSaveFile &file) const;

    /// Writes the table to `path` atomically. A symbolic link stays, and its target is written. With `keepExisting`, an
    /// existing file is first renamed to name_1.csv, name_2.csv or the next free name. Otherwise it is replaced.
    bool save(const QString &path, bool keepExisting);

    /// Replaces the headers and rows with those of the file. A column of type LongLong or UInt in `columnTypes_`
    /// gets qint64 cells, and one of another type gets doubles. Other cells are integers if possible, and doubles
    /// otherwise. A cell that is not a number is a failure. The table is empty after a failure.
    bool load(const QString &path);

    /// Returns the path of the table's file, or an empty text if it has none.
    [[nodiscard]] QString currentFilePath() const { return filePath_; }

protected:
    NumericRows rows_;
    QString filePath_;
    QMap<int, int> columnTypes_;  ///< column index to QVariant type code

private:
    QStringList headers_;
};
