#include "core/journal_tables.h"

#include "core/journal_folder.h"
#include "core/origins_csv.h"
#include "toolkit/base/file_utilities.h"

namespace {

std::string rowsText(const NumericRows &rows) {
    std::string text;
    for (std::size_t row = 0; row < rows.size(); ++row)
        text += NumericTableCSV::rowLine(rows, row);
    return text;
}

std::string originsText(const std::vector<RowOrigin> &origins, const ArrivalClock &clock) {
    std::string text;
    for (const RowOrigin &origin : origins)
        text += origins_csv::line(origin, clock);
    return text;
}

std::string markersText(const std::vector<RecordMarker> &markers) {
    std::string text;
    for (const RecordMarker &marker : markers)
        text += record_markers::journalLine(marker);
    return text;
}

QString write(QFile &file, const std::string &text) {
    const bool written = FileUtilities::writeAll(file, text.data(), static_cast<qint64>(text.size()));
    return written ? QString() : file.errorString();
}

QString goBackIn(QFile &file, qint64 sizeBytes) {
    // WriteOnly without ReadOnly would truncate the file. Unbuffered, so that a full disk is noticed at once.
    if (!file.isOpen() && !file.open(QIODevice::ReadWrite | QIODevice::Unbuffered | QIODevice::ExistingOnly))
        return file.errorString();
    if (file.size() < sizeBytes)
        return "the file was truncated by another program";
    return file.resize(sizeBytes) && file.seek(sizeBytes) ? QString() : file.errorString();
}

}  // namespace

JournalTables::JournalTables(const JournalFolder &folder, const ArrivalClock &clock)
    : clock_(clock), rows_(folder.rowsPath()), samples_(folder.samplesPath()), markers_(folder.markersPath()) {}

QString JournalTables::begin(const std::string &rowsHeader) {
    QString problem = goBack(End());
    if (problem.isEmpty())
        problem = write(samples_, origins_csv::header);
    if (problem.isEmpty())
        problem = write(markers_, record_markers::journalHeader);
    if (problem.isEmpty())
        problem = write(rows_, rowsHeader);
    end_ = {0, static_cast<qint64>(rowsHeader.size()), static_cast<qint64>(sizeof origins_csv::header - 1), 0,
            static_cast<qint64>(sizeof record_markers::journalHeader - 1)};
    return problem;
}

QString JournalTables::append(const RecordSlice &slice) {
    const std::string rows = rowsText(slice.rows);
    const std::string samples = originsText(slice.origins, clock_);
    const std::string markers = markersText(slice.markers);
    QString problem = write(samples_, samples);
    if (problem.isEmpty())
        problem = write(rows_, rows);
    if (problem.isEmpty())
        problem = write(markers_, markers);
    if (problem.isEmpty()) {
        end_.rowCount += slice.rows.size();
        end_.rowsBytes += static_cast<qint64>(rows.size());
        end_.samplesBytes += static_cast<qint64>(samples.size());
        end_.markerCount += slice.markers.size();
        end_.markersBytes += static_cast<qint64>(markers.size());
    }
    return problem;
}

QString JournalTables::goBack(const End &end) {
    QString problem = goBackIn(rows_, end.rowsBytes);
    if (problem.isEmpty())
        problem = goBackIn(samples_, end.samplesBytes);
    if (problem.isEmpty())
        problem = goBackIn(markers_, end.markersBytes);
    if (problem.isEmpty())
        end_ = end;
    return problem;
}
