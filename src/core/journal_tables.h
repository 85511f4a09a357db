#pragma once

#include "core/arrival_clock.h"
#include "core/eye_tracking_csv.h"

#include <QFile>
#include <QString>
#include <string>

class JournalFolder;

/// The tables of a journal, to which rows are appended. After a failed write they can go back to an earlier end.
/// Private to JournalWriter. One thread at a time.
class JournalTables {
public:
    /// The end of the tables after complete rows.
    struct End {
        std::size_t rowCount = 0;
        qint64 rowsBytes = 0;
        qint64 samplesBytes = 0;
        std::size_t markerCount = 0;
        qint64 markersBytes = 0;
    };

    /// The files must exist.
    JournalTables(const JournalFolder &folder, const ArrivalClock &clock);

    /// Opens the empty files and writes their headers. Returns the problem, or an empty text.
    [[nodiscard]] QString begin(const std::string &rowsHeader);

    /// Appends rows and the origins of their samples, the origins first: a program that ends in between leaves no row
    /// without its origin. Then appends the markers. Returns the problem, or an empty text. After a problem, call
    /// goBack() before the next append().
    [[nodiscard]] QString append(const RecordSlice &slice);

    /// Opens the files again if necessary, and removes everything after `end`. Returns the problem, or an empty text.
    [[nodiscard]] QString goBack(const End &end);

    [[nodiscard]] const End &end() const { return end_; }

private:
    const ArrivalClock clock_;
    QFile rows_;
    QFile samples_;
    QFile markers_;
    End end_;
};
