#include "core/record_markers.h"

#include "core/arrival_clock.h"
#include "toolkit/table/csv_text.h"

#include <QStringList>
#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace {

constexpr int journalColumnCount = 4;
constexpr char eventsHeader[] = "onset,duration,text,number,row\r\n";

std::string line(const QStringList &cells) {
    return csv::headerLine(cells, ',') + "\r\n";
}

QString numberCell(const RecordMarker &marker) {
    return marker.number == 0 ? QString() : QString::number(marker.number);
}

QString rowCell(const std::optional<quint64> &row) {
    return row ? QString::number(*row) : QString();
}

/// Returns seconds with six decimals. Integer arithmetic keeps each microsecond.
QString onsetCell(std::chrono::microseconds onset) {
    constexpr qint64 microsecondsPerSecond = 1'000'000;
    constexpr int decimals = 6;
    const qint64 size = std::abs(onset.count());
    return (onset.count() < 0 ? "-" : "") + QString::number(size / microsecondsPerSecond) + '.' +
           QString::number(size % microsecondsPerSecond).rightJustified(decimals, '0');
}

std::optional<RecordMarker> parseMarker(const QStringList &cells) {
    constexpr double microsecondsPerMs = 1000;
    if (cells.size() != journalColumnCount)
        return std::nullopt;
    bool isTime = false;
    bool isNumber = cells[2].isEmpty();
    bool isRow = cells[3].isEmpty();
    const double timeMs = cells[0].toDouble(&isTime);
    RecordMarker marker;
    marker.text = cells[1];
    if (!isNumber)
        marker.number = cells[2].toULongLong(&isNumber);
    if (!isRow)
        marker.row = cells[3].toULongLong(&isRow);
    if (!isTime || !std::isfinite(timeMs) || !isNumber || !isRow)
        return std::nullopt;
    marker.time = std::chrono::microseconds(std::llround(timeMs * microsecondsPerMs));
    return marker;
}

}  // namespace

std::string record_markers::journalLine(const RecordMarker &marker) {
    // The text is not the last cell, so that a line without its end has too few cells.
    return line({QString::fromStdString(ArrivalClock::utcMsText(marker.time)), marker.text, numberCell(marker),
                 rowCell(marker.row)});
}

record_markers::Parsed record_markers::parseJournal(const QByteArray &table) {
    const QList<csv::Record> records = csv::parse(QString::fromUtf8(table.left(table.lastIndexOf('\n') + 1)), ',');
    Parsed parsed;
    for (int i = 1; i < records.size(); ++i) {
        std::optional<RecordMarker> marker = parseMarker(records[i].fields);
        if (!marker) {
            parsed.isDamaged = i + 1 < records.size();
            break;
        }
        parsed.markers.push_back(std::move(*marker));
    }
    return parsed;
}

std::string record_markers::eventsText(std::vector<RecordMarker> markers,
                                       std::optional<std::chrono::microseconds> firstArrival, quint64 rowCount) {
    std::stable_sort(markers.begin(), markers.end(),
                     [](const RecordMarker &a, const RecordMarker &b) { return a.time < b.time; });
    std::string text = eventsHeader;
    for (const RecordMarker &marker : markers) {
        // A recovered record file may have lost its last rows.
        const bool hasRow = marker.row && *marker.row < rowCount;
        text += line({firstArrival ? onsetCell(marker.time - *firstArrival) : QString(), "0", marker.text,
                      numberCell(marker), hasRow ? rowCell(marker.row) : QString()});
    }
    return text;
}
