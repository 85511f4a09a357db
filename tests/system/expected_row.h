#pragma once

#include <QByteArray>
#include <QSize>
#include <QStringList>

/// What the program must make of one `<REC .../>` line, worked out independently of its own parser.
namespace expected {

/// The cells of the record file behind the two times, in the order of the columns.
[[nodiscard]] QStringList cells(const QByteArray &line, QSize screen);
/// The values as the window words them, where they tell one record from another.
[[nodiscard]] QStringList windowTexts(const QByteArray &line, QSize screen);

}  // namespace expected

/// A record file as its columns stand there, read by nothing but splitting.
struct RecordFile {
    explicit RecordFile(const QString &path);

    QByteArray header;
    QList<QStringList> rows;

    [[nodiscard]] qint64 timestamp(int row) const { return rows[row].first().toLongLong(); }
    /// The cells behind the two times.
    [[nodiscard]] QStringList values(int row) const { return rows[row].mid(2); }
};
