#include "core/companion_writer.h"

#include "core/eye_tracking_csv.h"
#include "core/journal_writer.h"
#include "core/origins_csv.h"
#include "core/record_companions.h"
#include "core/record_description.h"
#include "toolkit/base/file_utilities.h"

#include <QDir>
#include <QLoggingCategory>
#include <exception>
#include <utility>

namespace {

Q_LOGGING_CATEGORY(lcRecord, "ocela.record")

constexpr std::size_t writeSizeBytes = 1 << 18;

RecordingStatistics::Origin statisticsOrigin(const RowOrigin &origin) {
    using std::chrono::microseconds;
    return {std::chrono::duration_cast<microseconds>(origin.arrival.time_since_epoch()), origin.l_valid != 0,
            origin.r_valid != 0};
}

bool write(QSaveFile &file, const std::string &text) {
    return FileUtilities::writeAll(file, text.data(), static_cast<qint64>(text.size()));
}

}  // namespace

CompanionWriter::CompanionWriter(const EyeTrackingCSV &recording, const ArrivalClock &clock,
                                 std::unique_ptr<JournalWriter> journal)
    : recording_(recording), clock_(clock), journal_(std::move(journal)) {}

CompanionWriter::~CompanionWriter() = default;

void CompanionWriter::saving(const QString &path, std::size_t rowCount) {
    path_ = path;
    journal_->saving(path, rowCount);
}

void CompanionWriter::saved() {
    try {
        writeCompanions();
    } catch (const std::exception &error) {
        qCWarning(lcRecord).noquote() << "Cannot save the files that belong to"
                                      << QDir::toNativeSeparators(path_) + ": " << error.what();
    }
    journal_->saved();
}

void CompanionWriter::discarded() {
    journal_->discarded();
}

/// The description comes last: if it exists, both files have been dealt with.
void CompanionWriter::writeCompanions() const {
    record_companions::save(record_companions::samplesPath(path_),
                            [this](QSaveFile &file) { return writeSamples(file); });
    record_companions::saveDescription(path_, description());
}

bool CompanionWriter::writeSamples(QSaveFile &file) const {
    std::string text = origins_csv::header;
    for (std::size_t row = 0; row < recording_.rows().size(); ++row) {
        text += origins_csv::line(recording_.origin(row), clock_);
        if (text.size() < writeSizeBytes)
            continue;
        if (!write(file, text))
            return false;
        text.clear();
    }
    return write(file, text);
}

QByteArray CompanionWriter::description() const {
    RecordingStatistics statistics;
    for (std::size_t row = 0; row < recording_.rows().size(); ++row)
        statistics.add(recording_.rows().numbers(row), statisticsOrigin(recording_.origin(row)));
    return record_description::toJson(journal_->info(), statistics, false);
}
