#pragma once

#include <QObject>
#include <QString>
#include <atomic>
#include <chrono>
#include <optional>
#include <utility>
#include <vector>

class EyetrackerInterface;

/// A labelled moment of the experiment, for example the onset of a stimulus.
struct Marker {
    QString text;
    std::chrono::steady_clock::time_point time;
    quint64 number = 0;  ///< number of the selected tracker's newest sample at the call of Markers::add(), 0 for none
    bool recorded = false;  ///< whether a running recording has stored the marker
};
Q_DECLARE_METATYPE(Marker)

/// Sets markers. Every running recording of all trackers stores each marker. MainWindow owns the object.
class Markers : public QObject {
    Q_OBJECT

public:
    static constexpr int maxTextLength = 1000;  ///< Unicode code points
    /// The maximum difference between the time of a marker and now.
    static constexpr std::chrono::hours maxTimeDifference{24};

    explicit Markers(QObject *parent);

    /// Returns the number of Unicode code points. Half a surrogate pair counts as one.
    [[nodiscard]] static int lengthOf(const QString &text);

    /// Sets the trackers whose recordings store the markers. Call it before the first add(). GUI thread.
    void setTrackers(std::vector<EyetrackerInterface *> trackers) { trackers_ = std::move(trackers); }
    /// Sets the tracker from whose newest sample each marker gets its number. Null for none. GUI thread.
    void setSelectedTracker(EyetrackerInterface *tracker) { selectedTracker_ = tracker; }

    /// Sets a marker at `time`, or now. Emits added(). Any thread.
    ///
    /// The result is the marker as it is set. A text that is too long is truncated, and U+0000, which programs cannot
    /// read from a CSV file, is replaced by U+FFFD. A time that is too far from now is limited to maxTimeDifference.
    /// A marker that is set while a recording stops is in its file only if `recorded` is true.
    Marker add(const QString &text, std::optional<std::chrono::steady_clock::time_point> time = std::nullopt);

Q_SIGNALS:
    /// Emitted on the thread that calls add().
    void added(const Marker &marker);

private:
    std::vector<EyetrackerInterface *> trackers_;
    std::atomic<EyetrackerInterface *> selectedTracker_{nullptr};
};
