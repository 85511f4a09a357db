#pragma once

#include <QDateTime>
#include <QString>

/// Text formats that several parts of the program share. Callable from any thread.
class TextHelper {
public:
    /// Returns `moment` in local time as "2024-03-09_14-05-07", or with milliseconds as "2024-03-09_14-05-07-042". The
    /// text is valid in file names and sorts by time. A null `moment` is the current time.
    static QString DateTimeFileString(const QDateTime &moment, bool withMilliseconds);
};
