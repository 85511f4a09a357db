#pragma once

#include <QtGlobal>
#include <cstddef>

/// Writes numbers as text for files. The text is that of QVariant::toString(), in every locale. Reentrant.
///
/// Conversion with QVariant or QString takes ten times as long, and a recording has millions of cells. For the same
/// reason, the functions write to the caller's buffer.
namespace number_text {

/// The size of a buffer that is large enough for every number.
constexpr std::size_t maxBytes = 32;

/// Writes `value` to the buffer `to`, without a NUL, and returns the end of the text.
[[nodiscard]] char *write(char *to, qint64 value);

/// Writes the shortest decimal text that reads back as the same double. NaN and infinity are "nan", "inf" and "-inf".
[[nodiscard]] char *write(char *to, double value);

}  // namespace number_text
