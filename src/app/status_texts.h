#pragma once

#include "core/eyetracker_interface.h"
#include "core/record_length.h"

#include <QCoreApplication>
#include <QLocale>
#include <optional>

/// The state of a tracker.
struct TrackerStatus {
    bool connected = false;
    QString problem;  ///< why the tracker is not connected, or an empty text if that is not known

    std::chrono::milliseconds silence{0};  ///< since the last sample or, before the first sample, since the connection
    std::optional<double> rateHz;          ///< without a value if there are not enough samples
    std::optional<double> validShare;      ///< 0 to 1; without a value if there are no samples

    /// Whether samples arrive.
    [[nodiscard]] bool isLive() const { return connected && silence < EyetrackerInterface::silenceLimit; }
};

/// The texts of the status bar, in the language of the user interface. Numbers have the format of `locale`. GUI thread.
class StatusTexts {
    Q_DECLARE_TR_FUNCTIONS(StatusTexts)

public:
    explicit StatusTexts(const QLocale &locale) : locale_(locale) {}

    [[nodiscard]] QString tracker(const TrackerStatus &status) const;
    [[nodiscard]] static QString calibration(EyetrackerInterface::CalibrationResult result);

    /// `trackerName` is empty for the selected tracker.
    [[nodiscard]] QString recording(const RunningRecording &recording, const QString &trackerName) const;
    /// `number` counts the markers of a recording from 1.
    [[nodiscard]] QString markerSet(int number) const;
    [[nodiscard]] static QString markerWithoutRecording();
    /// For a recording that has the maximum number of markers.
    [[nodiscard]] static QString markerNotStored();
    [[nodiscard]] QString saved(const RecordLength &length, const QString &fileName) const;
    /// For a recording of an earlier run of the program.
    [[nodiscard]] static QString recovered(const QString &fileName);
    [[nodiscard]] static QString notSaved(const QString &problem);

private:
    [[nodiscard]] QString samples(std::size_t count) const;

    QLocale locale_;
};
