#pragma once

#include <QByteArray>
#include <QStringList>

/// The cells of a record file, split at commas and line ends without the program's own reader.
struct RecordFile {
    explicit RecordFile(const QString &path);

    QByteArray header;
    QList<QStringList> rows;

    [[nodiscard]] qint64 timestamp(int row) const { return rows[row].first().toLongLong(); }
    /// Returns the cells after the two time columns.
    [[nodiscard]] QStringList values(int row) const { return rows[row].mid(2); }
};
