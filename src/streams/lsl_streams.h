#pragma once

#include "streams/lsl_worker.h"

#include <QObject>
#include <QTimer>

class QScreen;

/// The streams of the Lab Streaming Layer (LSL): the gaze of the selected tracker and the markers. Receivers find them
/// in the local network. MainWindow owns the object. GUI thread.
///
/// The gaze stream opens with the first sample of the tracker, because its description includes the tracker's screen.
/// It closes when another tracker is selected, and opens again if the tracked screen or area changes. Samples and
/// markers have the time of their arrival.
class LslStreams : public QObject {
    Q_OBJECT

public:
    /// All trackers must set `signal`.
    explicit LslStreams(std::shared_ptr<SampleSignal> signal, QObject *parent = nullptr);
    /// Closes the streams. Waits at most LslWorker::closeTimeout.
    ~LslStreams() override;

    /// Opens or closes the streams, soon. If the library was not found before, looks it up again.
    void setOn(bool isOn);
    /// Sets the tracker whose samples are sent. It must exist until another one is set. Null for none.
    void setTracker(EyetrackerInterface *tracker);
    /// Sends the markers that are set from now on.
    void watch(const Markers &markers);

    /// Returns why the streams cannot be received, as translated sentences, or an empty text.
    [[nodiscard]] QString problem() const;

Q_SIGNALS:
    void problemChanged();

private:
    void setProblem(const std::optional<LslProblem> &problem);
    void checkLibrary();
    void watch(const QScreen &screen);
    void updateScreens();

    std::optional<LslProblem> problem_;
    bool isOn_ = false;
    bool isBlocked_ = false;  ///< whether the library does not respond
    QTimer checkTimer_;
    EyetrackerInterface *tracker_ = nullptr;
    const std::shared_ptr<LslWorker> worker_;
};
