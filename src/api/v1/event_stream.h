#pragma once

#include "api/v1/marker_log.h"
#include "api/v1/sample_texts.h"
#include "api/v1/state_json.h"
#include "api/v1/stream_dispatcher.h"

#include <QVector>
#include <functional>

class HttpResponse;

namespace api_v1 {

/// Where a stream starts.
struct StreamRequest {
    std::optional<quint64> after;  ///< number of the last sample that the client has; without it, only new samples
    std::optional<quint64> markerCount;     ///< how many markers of the run the client need not get, if it knows
    bool isOfOtherRun = false;              ///< the client resumes a stream of an earlier run of the program
    std::chrono::milliseconds interval{0};  ///< minimum time between two events with samples
    std::function<bool()> isPermitted;      ///< whether the client may still use the API
};

/// What all streams read. The references must outlive the streams.
struct StreamSources {
    const ProgramRun &run;
    const PublishedState &state;
    StateJson &stateJson;
    SampleTexts &sampleTexts;
    const MarkerLog &markers;
    StreamDispatcher &dispatcher;
};

/// One client's stream of server-sent events: states, samples, markers and heartbeats. Used in one connection thread.
///
/// A client that reads slowly blocks only its own thread, in the write of an event. Samples that leave the window
/// meanwhile are skipped, and their number is sent. So is the number of the samples of trackers that were selected, and
/// deselected again, while the client did not read: clients get samples only after the state with their tracker.
///
/// The id of an event is the position of a client that has received everything up to that event, see EventId.
class EventStream {
public:
    EventStream(const StreamSources &sources, const StreamRequest &request, HttpResponse &response);

    /// Sends events until the client disconnects, is no longer permitted or the program closes. There must be a
    /// published state.
    void run();

private:
    using Clock = std::chrono::steady_clock;

    struct Event {
        QByteArray name;
        std::optional<quint64> number;  ///< for the id: of the last sample before the event's end; nothing for no id
        QVector<QByteArray> data;
    };

    void start();
    [[nodiscard]] bool isStillPermitted();
    void sendNews();
    void send(const QVector<QByteArray> &markers);
    void followState(Clock::time_point now);
    void appendRest(const Selection &earlier);
    void startSelection();
    void appendSamples(Clock::time_point now);
    void append(const SampleText &text);
    void appendState(Clock::time_point now, std::optional<quint64> number);
    void appendMissed(std::optional<quint64> sampleCount);
    [[nodiscard]] QVector<QByteArray> takeMarkers(quint64 sentNumber);
    [[nodiscard]] QVector<QByteArray> pieces(const Event &event) const;
    void waitForNews();

    const StreamSources sources_;
    const StreamRequest request_;
    HttpResponse &response_;

    std::shared_ptr<const ProgramState> state_;  ///< the last one that was sent
    quint64 position_ = 0;                       ///< number of the last sample that was sent or skipped
    quint64 markerPosition_ = 0;                 ///< how many markers of the run were sent or skipped
    quint64 changeCount_ = 0;                    ///< the last one of the dispatcher
    Clock::time_point nextState_;
    Clock::time_point nextPermission_;
    Clock::time_point nextSamples_;
    QVector<Event> events_;  ///< to be sent
    QByteArray comment_;     ///< to be sent before them
};

/// Returns a marker as clients see it.
[[nodiscard]] QJsonObject markerJson(const Marker &marker, const ProgramRun &run);

}  // namespace api_v1
