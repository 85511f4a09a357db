#pragma once

#include <QDateTime>
#include <QString>

/// Texts that several parts of the program write in the same form. Callable from any thread.
class TextHelper {
public:
    /// `moment` as "2024-03-09_14-05-07", with milliseconds "2024-03-09_14-05-07-042": a later moment sorts
    /// behind an earlier one, and every character is allowed in a file name. The time is local time, whatever
    /// the zone of `moment`; a null `moment` stands for now.
    static QString DateTimeFileString(const QDateTime &moment, bool withMilliseconds);
};
