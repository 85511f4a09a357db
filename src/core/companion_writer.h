#pragma once

#include "core/recording_phases.h"

#include <QSaveFile>
#include <memory>

class EyeTrackingCSV;
class JournalWriter;

/// Writes the companions of a record file when it has been saved, before its journal is removed. A program that ends in
/// between leaves a journal from which the companions are recovered. A companion that cannot be written is a warning.
/// Markers that cannot be written stay in the journal, and the next start of the program tries again.
///
/// The recording owns it. Owns the journal, and passes the phases on to it.
class CompanionWriter : public RecordingPhases {
public:
    CompanionWriter(const EyeTrackingCSV &recording, std::unique_ptr<JournalWriter> journal);
    ~CompanionWriter() override;

    void saving(const QString &path, std::size_t rowCount) override;
    void saved() override;
    void discarded() override;

private:
    [[nodiscard]] bool writeEvents() const;
    void writeDescription() const;
    [[nodiscard]] bool writeSamples(QSaveFile &file) const;
    [[nodiscard]] QByteArray description() const;

    const EyeTrackingCSV &recording_;
    const std::unique_ptr<JournalWriter> journal_;
    QString path_;
};
