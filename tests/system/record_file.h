#pragma once

#include <QByteArray>
#include <QStringList>

/// A record file as its columns stand there, read by nothing but splitting.
struct RecordFile {
    explicit RecordFile(const QString &path);

    QByteArray header;
    QList<QStringList> rows;

    [[nodiscard]] qint64 timestamp(int row) const { return rows[row].first().toLongLong(); }
    /// The cells behind the two times.
    [[nodiscard]] QStringList values(int row) const { return rows[row].mid(2); }
};
