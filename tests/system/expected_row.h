#pragma once

#include <QByteArray>
#include <QSize>
#include <QStringList>

/// The expected results for one `<REC .../>` line, computed independently of the program's own parser.
namespace expected {

/// Returns the cells of the record file after the two time columns.
[[nodiscard]] QStringList cells(const QByteArray &line, QSize screen);
/// Returns the texts in the window that differ between records.
[[nodiscard]] QStringList windowTexts(const QByteArray &line, QSize screen);

}  // namespace expected
