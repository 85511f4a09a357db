#include "app/status_texts.h"

#include <algorithm>
#include <limits>

namespace {

constexpr int secondsPerMinute = 60;
constexpr int secondsPerHour = 60 * secondsPerMinute;

qint64 wholeSeconds(std::chrono::milliseconds time) {
    return std::chrono::duration_cast<std::chrono::seconds>(time).count();
}

QString twoDigits(qint64 number) {
    return QString::number(number).rightJustified(2, '0');
}

/// Returns a duration like "00:12:41".
QString clock(std::chrono::milliseconds time) {
    const qint64 seconds = wholeSeconds(time);
    return twoDigits(seconds / secondsPerHour) + ':' + twoDigits(seconds % secondsPerHour / secondsPerMinute) + ':' +
           twoDigits(seconds % secondsPerMinute);
}

/// Returns a duration like "12:41" or, from one hour on, "01:12:41".
QString shortClock(std::chrono::milliseconds time) {
    return wholeSeconds(time) < secondsPerHour ? clock(time).mid(3) : clock(time);
}

}  // namespace

QString StatusTexts::tracker(const TrackerStatus &status) const {
    if (!status.connected)
        return status.problem.isEmpty() ? tr("Not connected") : tr("Not connected: %1").arg(status.problem);
    if (!status.isLive()) {
        const qint64 seconds = wholeSeconds(status.silence);
        return tr("Connected, but no samples for %1")
            .arg(seconds < secondsPerMinute ? tr("%1 s").arg(seconds) : shortClock(status.silence));
    }
    if (!status.rateHz || !status.validShare)
        return tr("Connected");
    return tr("Connected, %1 Hz, %2 % valid")
        .arg(locale_.toString(*status.rateHz, 'f', 1), QString::number(qRound(100 * *status.validShare)));
}

QString StatusTexts::calibration(EyetrackerInterface::CalibrationResult result) {
    using Result = EyetrackerInterface::CalibrationResult;
    switch (result) {
        case Result::Done:
            return tr("Calibration done");
        case Result::Failed:
            return tr("Calibration failed");
        case Result::Cancelled:
            return tr("Calibration cancelled");
        case Result::Unknown:
            break;
    }
    return tr("Calibration result unknown");
}

QString StatusTexts::recording(const RunningRecording &recording, const QString &trackerName) const {
    const QString start = trackerName.isEmpty() ? tr("Recording") : tr("Recording (%1)").arg(trackerName);
    const int markers = recording.markerCount;
    return start + ' ' + clock(recording.length.duration) + ", " + samples(recording.length.sampleCount) +
           (markers > 0 ? ", " + tr("%1 marker(s)", nullptr, markers).arg(locale_.toString(markers)) : QString());
}

QString StatusTexts::markerSet(int number) const {
    return tr("Marker %1 set").arg(locale_.toString(number));
}

QString StatusTexts::markerWithoutRecording() {
    return tr("Marker set; no recording is running");
}

QString StatusTexts::markerNotStored() {
    return tr("Marker not stored: the recording has too many markers");
}

QString StatusTexts::saved(const RecordLength &length, const QString &fileName) const {
    return tr("Saved %1").arg(fileName) + ", " + samples(length.sampleCount) + ", " + shortClock(length.duration);
}

QString StatusTexts::recovered(const QString &fileName) {
    return tr("Interrupted recording recovered: %1").arg(fileName);
}

QString StatusTexts::notSaved(const QString &problem) {
    return tr("Not saved: %1").arg(problem);
}

QString StatusTexts::samples(std::size_t count) const {
    constexpr std::size_t maxCount = std::numeric_limits<int>::max();
    // The number selects the plural form.
    return tr("%1 sample(s)", nullptr, static_cast<int>(std::min(count, maxCount)))
        .arg(locale_.toString(static_cast<qulonglong>(count)));
}
