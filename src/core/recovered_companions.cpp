#include "core/recovered_companions.h"

#include "core/journal_rows.h"
#include "core/origins_csv.h"
#include "core/record_companions.h"
#include "core/record_description.h"
#include "toolkit/base/buffered_writer.h"

#include <QDir>
#include <QFile>
#include <QLoggingCategory>

namespace {

Q_LOGGING_CATEGORY(lcRecovery, "ocela.recovery")

/// Returns an empty array if the file cannot be read.
QByteArray contentOf(const QString &path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

}  // namespace

bool RecoveredCompanions::save() const {
    const bool hasEvents = saveEvents();
    return saveDescription() && hasEvents;
}

bool RecoveredCompanions::hasMarkers() const {
    const auto found = markers();
    return !found || !found->empty();
}

/// Returns std::nullopt if the markers cannot be read.
std::optional<std::vector<RecordMarker>> RecoveredCompanions::markers() const {
    QFile file(folder_.markersPath());
    if (!file.exists())
        return std::vector<RecordMarker>();
    if (!file.open(QIODevice::ReadOnly)) {
        qCWarning(lcRecovery).noquote() << "Cannot read"
                                        << QDir::toNativeSeparators(file.fileName()) + ": " + file.errorString();
        return std::nullopt;
    }
    record_markers::Parsed parsed = record_markers::parseJournal(file.readAll());
    if (parsed.isDamaged)
        qCWarning(lcRecovery).noquote() << "Only the first" << parsed.markers.size() << "markers can be read in"
                                        << QDir::toNativeSeparators(file.fileName());
    return std::move(parsed.markers);
}

bool RecoveredCompanions::saveEvents() const {
    auto markers = this->markers();
    if (!markers || markers->empty())
        return markers.has_value();
    const std::string text = record_markers::eventsText(std::move(*markers), firstArrival(), info_.savingRowCount);
    // The recording may have written its file before its program ended, with markers that the journal lacks.
    if (contentOf(record_companions::eventsPath(info_.savingPath)).startsWith(QByteArray::fromStdString(text)))
        return true;
    return record_companions::saveEvents(info_.savingPath, text);
}

std::optional<std::chrono::microseconds> RecoveredCompanions::firstArrival() const {
    JournalRows samples(folder_.samplesPath(), origins_csv::header);
    const std::optional<std::string_view> sample = samples.nextRow();
    return sample && info_.savingRowCount > 0 ? std::optional(origins_csv::parse(*sample).arrival) : std::nullopt;
}

bool RecoveredCompanions::saveDescription() const {
    if (!info_.isDescribed || hasDescription())
        return true;
    if (!hasSamples())
        saveSamples();
    const RecordingStatistics statistics = this->statistics();
    if (stopping_)
        return false;
    record_companions::saveDescription(info_.savingPath, record_description::toJson(info_, statistics));
    return true;
}

/// The description is written last. If it exists, the samples file has been written, or its failure has been logged.
bool RecoveredCompanions::hasDescription() const {
    return record_description::describes(contentOf(record_companions::descriptionPath(info_.savingPath)), info_);
}

bool RecoveredCompanions::hasSamples() const {
    JournalRows samples(folder_.samplesPath(), origins_csv::header);
    return samples.rowCountOfContinuation(record_companions::samplesPath(info_.savingPath)).has_value();
}

void RecoveredCompanions::saveSamples() const {
    const QString path = record_companions::samplesPath(info_.savingPath);
    quint64 rowCount = 0;
    record_companions::save(path, [&](QSaveFile &file) {
        JournalRows samples(folder_.samplesPath(), origins_csv::header);
        BufferedWriter writer(file);
        bool written = writer.append(origins_csv::header);
        // The journal may have a sample whose row was not written.
        for (; written && rowCount < info_.savingRowCount; ++rowCount) {
            const std::optional<std::string_view> row = samples.nextRow();
            if (!row)
                break;
            written = writer.append(*row);
        }
        return written && writer.flush();
    });
    if (rowCount < info_.savingRowCount)
        qCWarning(lcRecovery).noquote() << QDir::toNativeSeparators(path) << "has only the first" << rowCount << "of"
                                        << info_.savingRowCount << "rows";
}

RecordingStatistics RecoveredCompanions::statistics() const {
    JournalRows rows(info_.savingPath, JournalRows::recordHeader());
    JournalRows samples(folder_.samplesPath(), origins_csv::header);
    RecordingStatistics statistics;
    for (auto row = rows.nextRow(); row && !stopping_; row = rows.nextRow()) {
        const std::optional<std::string_view> sample = samples.nextRow();
        statistics.add(RecordingStatistics::parseRow(*row),
                       sample ? std::optional(origins_csv::parse(*sample)) : std::nullopt);
    }
    return statistics;
}
