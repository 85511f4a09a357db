#pragma once

#include <QtGlobal>
#include <cstddef>

/// Text forms of numbers for files, the same in every locale, and the same as QVariant's own conversion to
/// text.
///
/// Reentrant; any thread may call them. They exist because QVariant and QString cost ten times as much, and a
/// record has millions of cells; that is also why they write into memory of the caller's.

/// Room that the text of any number fits in, in bytes.
constexpr std::size_t numberTextRoom = 32;

/// Writes the number to `to`, without a NUL, and returns the end of what was written.
[[nodiscard]] char *writeNumber(char *to, qint64 value);

/// Writes the shortest decimal text that reads back as the same double; "nan", "inf" and "-inf" for what is
/// no number.
[[nodiscard]] char *writeNumber(char *to, double value);
