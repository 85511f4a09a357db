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
