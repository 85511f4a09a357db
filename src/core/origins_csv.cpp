#include "core/origins_csv.h"

#include "toolkit/table/csv_text.h"

#include <cmath>

std::string origins_csv::line(const RowOrigin &origin, const ArrivalClock &clock) {
    return std::to_string(origin.number) + ',' + clock.utcMsText(origin.arrival) + (origin.l_valid ? ",1" : ",0") +
           (origin.r_valid ? ",1\r\n" : ",0\r\n");
}

RecordingStatistics::Origin origins_csv::parse(std::string_view line) {
    constexpr double microsecondsPerMs = 1000;
    csv::LineNumbers cells(line, ',');
    cells.skip(1);
    const double arrivalMs = cells.next();
    RecordingStatistics::Origin origin;
    if (std::isfinite(arrivalMs))
        origin.arrival = std::chrono::microseconds(std::llround(arrivalMs * microsecondsPerMs));
    origin.l_valid = cells.next() != 0;
    origin.r_valid = cells.next() != 0;
    return origin;
}

const std::vector<RecordColumn> &origins_csv::columns() {
    static const std::vector<RecordColumn> columns{
        {"Number", ""}, {"Arrival_ms", "ms"}, {"L_Valid", ""}, {"R_Valid", ""}};
    return columns;
}
