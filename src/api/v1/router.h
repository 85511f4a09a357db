#pragma once

#include "api/lifetime_guard.h"
#include "api/v1/commands.h"
#include "api/v1/event_id.h"
#include "api/v1/event_stream.h"
#include "api/v1/record_files.h"

#include <QObject>
#include <atomic>
#include <variant>

class AccessPolicy;
class HttpRequest;
class HttpResponse;
class Markers;

namespace api_v1 {

class RequestReader;

/// Answers the requests below /api/v1, the API for programs. service() is called on connection threads, all other
/// functions on the GUI thread.
class Router : public QObject {
    Q_OBJECT

public:
    /// `access` must outlive the router.
    explicit Router(const AccessPolicy &access);
    ~Router() override;

    [[nodiscard]] const ProgramRun &run() const { return run_; }
    /// Set by each new sample, state and marker.
    [[nodiscard]] const std::shared_ptr<SampleSignal> &signal() const { return signal_; }
    [[nodiscard]] PublishedState &state() { return state_; }

    /// Answers requests from now on. Earlier requests get 503. A state must have been published. Both objects must
    /// exist until the last request is answered. A request that hangs in the file system does not use them after
    /// close().
    void open(Commands &commands, Markers &markers);
    /// Ends all streams, and waits for running commands. Later requests get 503.
    void close();

    /// Returns whether a request for the path belongs to this API.
    [[nodiscard]] static bool hasPath(const QByteArray &path);

    /// Answers a request for a path of this API. If the file system hangs, the router may be destroyed before the call
    /// returns.
    void service(HttpRequest &request, HttpResponse &response);

private:
    struct Endpoint;
    static const Endpoint endpoints[];
    struct Request;
    struct Download {
        record_files::OpenFile file;
        QByteArray contentType;
        QByteArray range;
    };
    /// Samples, and the position of a client that has received all before them.
    struct SamplesAfter {
        quint64 position = 0;
        SamplesSince samples;
    };
    using Answer = std::variant<Reply, StreamRequest, Download>;

    [[nodiscard]] Answer answer(const HttpRequest &request, HttpResponse &response);
    [[nodiscard]] Answer answerAt(const Endpoint &endpoint, const QByteArray &path, const HttpRequest &request);
    [[nodiscard]] static Reply options(const QByteArray &methods, HttpResponse &response);
    void resume(const EventId &id, StreamRequest &stream) const;
    [[nodiscard]] SamplesAfter samplesAfter(quint64 number) const;
    [[nodiscard]] SamplesAfter recentSamples() const;

    [[nodiscard]] Answer getState(const Request &request);
    [[nodiscard]] Answer putTracker(const Request &request);
    [[nodiscard]] Answer getSamples(const Request &request);
    [[nodiscard]] Answer getStream(const Request &request);
    [[nodiscard]] Answer postRecording(const Request &request);
    [[nodiscard]] Answer deleteRecording(const Request &request);
    [[nodiscard]] Answer getRecordings(const Request &request);
    [[nodiscard]] Answer getRecording(const Request &request);
    [[nodiscard]] Answer putAreas(const Request &request);
    [[nodiscard]] Answer postEvent(const Request &request);
    [[nodiscard]] Answer postCalibration(const Request &request);
    [[nodiscard]] Answer deleteCalibration(const Request &request);
    [[nodiscard]] Answer getDescription(const Request &request);

    static void send(const Reply &reply, HttpResponse &response);
    void send(const StreamRequest &stream, HttpResponse &response);
    static void send(const Download &download, HttpResponse &response);

    const AccessPolicy &access_;
    const ProgramRun run_;
    const std::shared_ptr<SampleSignal> signal_ = std::make_shared<SampleSignal>();
    PublishedState state_{signal_};
    MarkerLog markerLog_{signal_};
    StateJson stateJson_{run_};
    SampleTexts sampleTexts_{run_};
    std::atomic<Commands *> commands_{nullptr};
    const std::shared_ptr<LifetimeGuard> commandsGuard_ = std::make_shared<LifetimeGuard>();
    Markers *markers_ = nullptr;
    StreamDispatcher dispatcher_{state_, markerLog_, signal_};  ///< declared last: its thread uses the other members
};

}  // namespace api_v1
