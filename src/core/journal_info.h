#pragma once

#include <QByteArray>
#include <QRect>
#include <QString>
#include <optional>

/// The phase of a recording. Each phase after Recording is on the disk before the next step starts, so a program that
/// ends at any moment neither loses nor duplicates a recording. If a phase cannot be written, a warning is logged and
/// the step continues. A recovery may then duplicate the recording.
enum class JournalPhase {
    Recording,
    Saving,  ///< a complete file is about to get the name JournalInfo::savingPath
    Saved,
    Discarded,
};

/// The description of a recording in its journal.
struct JournalInfo {
    QString targetPath;  ///< absolute path of the record file
    QString tracker;     ///< EyetrackerInterface::name()
    qint64 startUtcMs = 0;
    QString programVersion;
    QRect screen;  ///< desktop pixels
    QRect calibratedArea;
    bool isDescribed = false;         ///< whether the record file gets a description and a samples file
    bool systemClockStepped = false;  ///< see ClockWatch
    JournalPhase phase = JournalPhase::Recording;
    QString savingPath;          ///< set from the phase Saving on
    bool isRecovered = false;    ///< whether the recovery has written the record file
    quint64 savingRowCount = 0;  ///< rows of the file at `savingPath`, without its header

    [[nodiscard]] QByteArray toJson() const;
};

struct ParsedJournalInfo {
    enum class Outcome { Ok, UnknownFormat, Damaged };

    Outcome outcome = Outcome::Damaged;
    JournalInfo info;  ///< set if `outcome` is Ok
};

[[nodiscard]] ParsedJournalInfo parseJournalInfo(const QByteArray &json);
