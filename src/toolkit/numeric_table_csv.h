#pragma once

#include "toolkit/numeric_rows.h"

#include <QMap>
#include <QObject>
#include <QStringList>

/// A table of numbers with named columns that is saved to, and loaded from, a CSV file.
///
/// The file follows RFC 4180: comma, CR LF, header row first, decimal point in every locale, UTF-8 without a
/// byte order mark. The whole table is held in memory (see NumericRows). Failures are reported by the result,
/// and one warning in the log says which file and why.
///
/// Not thread-safe: used by one thread at a time, whichever that is.
class NumericTableCSV : public QObject {
    Q_OBJECT

public:
    explicit NumericTableCSV(QObject *parent = nullptr);

    void setHeaders(const QStringList &headers);
    [[nodiscard]] QStringList headers() const { return headers_; }
    [[nodiscard]] const NumericRows &rows() const { return rows_; }

    /// Writes the table to `path`, through a temporary file beside it, so that a failure leaves neither half
    /// a file nor a damaged earlier one. With `keepExisting` a file that already stands there is first
    /// renamed to the next free one of name_1.csv, name_2.csv, ...; otherwise it is replaced.
    bool save(const QString &path, bool keepExisting);

    /// Replaces headers and rows by those of the file. Columns named in `columnTypes_` get cells of that
    /// type, others integers where the text is one and doubles elsewhere. A cell that is no number makes the
    /// load fail, and the table is left empty.
    bool load(const QString &path);

    /// The file that the table belongs to; empty when it has none.
    [[nodiscard]] QString currentFilePath() const { return filePath_; }

protected:
    NumericRows rows_;
    QString filePath_;
    QMap<int, int> columnTypes_;  ///< column index to QVariant type code

private:
    QStringList headers_;
};
