#include "core/companion_writer.h"

#include "core/eye_tracking_csv.h"
#include "core/journal_writer.h"
#include "core/origins_csv.h"
#include "core/record_companions.h"
#include "core/record_description.h"
#include "toolkit/base/buffered_writer.h"

#include <QDir>
#include <QLoggingCategory>
#include <exception>
#include <utility>

namespace {

Q_LOGGING_CATEGORY(lcRecord, "ocela.record")

}  // namespace

CompanionWriter::CompanionWriter(const EyeTrackingCSV &recording, std::unique_ptr<JournalWriter> journal)
    : recording_(recording), journal_(std::move(journal)) {}

CompanionWriter::~CompanionWriter() = default;

void CompanionWriter::saving(const QString &path, std::size_t rowCount) {
    path_ = path;
    journal_->saving(path, rowCount);
}

void CompanionWriter::saved() {
    bool hasEvents = false;
    try {
        hasEvents = writeEvents();
        if (journal_->info().isDescribed)
            writeDescription();
    } catch (const std::exception &error) {
        qCWarning(lcRecord).noquote() << "Cannot save the files that belong to"
                                      << QDir::toNativeSeparators(path_) + ": " + error.what();
    }
    if (hasEvents)
        journal_->saved();
}

void CompanionWriter::discarded() {
    journal_->discarded();
}

/// Returns whether all markers are in a file.
bool CompanionWriter::writeEvents() const {
    if (recording_.markers().empty())
        return true;
    std::optional<std::chrono::microseconds> firstArrival;
    if (recording_.rows().size() > 0)
        firstArrival = recording_.clock().utc(recording_.origin(0).arrival);
    const std::vector<RecordMarker> markers(recording_.markers().begin(), recording_.markers().end());
    return record_companions::saveEvents(path_,
                                         record_markers::eventsText(markers, firstArrival, recording_.rows().size()));
}

/// The description is written last. If it exists, the samples file has been written, or its failure has been logged.
void CompanionWriter::writeDescription() const {
    record_companions::save(record_companions::samplesPath(path_),
                            [this](QSaveFile &file) { return writeSamples(file); });
    record_companions::saveDescription(path_, description());
}

bool CompanionWriter::writeSamples(QSaveFile &file) const {
    BufferedWriter writer(file);
    bool written = writer.append(origins_csv::header);
    for (std::size_t row = 0; written && row < recording_.rows().size(); ++row)
        written = writer.append(origins_csv::line(recording_.origin(row), recording_.clock()));
    return written && writer.flush();
}

QByteArray CompanionWriter::description() const {
    RecordingStatistics statistics;
    for (std::size_t row = 0; row < recording_.rows().size(); ++row) {
        const RowOrigin &origin = recording_.origin(row);
        statistics.add(RecordingStatistics::rowOf(recording_.rows(), row),
                       RecordingStatistics::Origin{recording_.clock().utc(origin.arrival), origin.l_valid != 0,
                                                   origin.r_valid != 0});
    }
    return record_description::toJson(journal_->info(), statistics);
}
