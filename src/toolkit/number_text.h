#pragma once

#include <QtGlobal>
#include <string>

/// Text forms of numbers for files, the same in every locale, and the same as QVariant's own conversion to
/// text.
///
/// Reentrant; any thread may call them. They exist because QVariant and QString cost ten times as much, and a
/// record has millions of cells.

void appendNumber(std::string &text, qint64 value);

/// The shortest decimal text that reads back as the same double; "nan", "inf" and "-inf" for what is no
/// number.
void appendNumber(std::string &text, double value);
