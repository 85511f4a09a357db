#pragma once

#include <QList>
#include <QStringList>
#include <string>

/// The text side of CSV files (RFC 4180), free of files and tables. Reentrant.
namespace csv {

/// The fields as one UTF-8 line without its end, quoted where they hold a separator, a quote or a line break.
[[nodiscard]] std::string headerLine(const QStringList &fields, char separator);

/// Splits a file's text into records of fields. Lines may end in CR LF, LF or CR; a last line end is
/// optional, a byte order mark is skipped, and an unclosed quote ends with the text.
[[nodiscard]] QList<QStringList> parse(const QString &text, char separator);

}  // namespace csv
