#include "api/v1/router.h"

#include "api/access_policy.h"
#include "api/v1/byte_range.h"
#include "api/v1/record_target.h"
#include "api/v1/request_reader.h"
#include "core/eyetracker_interface.h"
#include "core/markers.h"
#include "core/record_companions.h"
#include "http/byte_text.h"
#include "http/http_log.h"
#include "http/http_request.h"
#include "http/http_response.h"
#include "http/url_encoding.h"

#include <QDir>
#include <QJsonArray>
#include <QLocale>
#include <algorithm>
#include <exception>
#include <limits>

// Outside of any namespace, as Qt requires.
static void initialiseResources() {
    Q_INIT_RESOURCE(api_v1);
}

using namespace api_v1;

namespace {

const QByteArray root = QByteArrayLiteral("/api/v1");

/// JSON readers store numbers as double, which is exact up to this one.
constexpr quint64 maxNumber = quint64(1) << 53;
constexpr quint64 maxSampleCount = 10'000;
constexpr quint64 maxIntervalMs = 1000;
constexpr int maxLoggedLength = 200;
constexpr char areasFormat[] = "Ocela areas";
constexpr int preflightLifetimeSeconds = 600;
/// A client's clock may differ a little.
constexpr std::chrono::seconds maxFuture(1);

QByteArray httpDate(const QDateTime &time) {
    return QLocale::c().toString(time.toUTC(), "ddd, dd MMM yyyy hh:mm:ss 'GMT'").toLatin1();
}

/// Returns the decoded path. A plus sign stands for itself: only in a query it means a space.
QByteArray pathOf(const HttpRequest &request) {
    QByteArray path = request.getRawPath().split('?').first();
    return url_encoding::decode(byte_text::view(path.replace('+', "%2B")));
}

Reply starting() {
    Reply reply = problem(503, "Ocela is starting or closing. Try again in a second.");
    reply.headers.push_back({"Retry-After", "1"});
    return reply;
}

/// Closes the connection, which may be one of another computer.
Reply forbidden(const QByteArray &reason) {
    Reply reply = problem(403, QString::fromUtf8(reason));
    reply.headers.push_back({"Connection", "close"});
    return reply;
}

Reply notModified(const QByteArray &tag) {
    Reply reply = emptyReply(304);
    reply.headers.push_back({"ETag", tag});
    reply.headers.push_back({"Cache-Control", "no-cache"});
    return reply;
}

/// Returns the kind of file for a value of the parameter "file". Without the parameter, the value is empty.
std::optional<record_files::Kind> fileKind(const QByteArray &value) {
    if (value.isEmpty() || value == "record")
        return record_files::Kind::Record;
    if (value == "samples")
        return record_files::Kind::Samples;
    if (value == "events")
        return record_files::Kind::Events;
    if (value == "areas")
        return record_files::Kind::Areas;
    return {};
}

Reply noRecordFile() {
    return problem(404, "The records folder has no record file of this name. GET /api/v1/recordings lists them.");
}

Reply methodNotAllowed(const QByteArray &methods) {
    Reply reply = problem(405, "The methods of this path are " + QString::fromLatin1(methods) + '.');
    reply.headers.push_back({"Allow", methods});
    return reply;
}

}  // namespace

struct Router::Request {
    const HttpRequest &http;
    QByteArray name;  ///< the rest of the path, for an endpoint that has one
    std::shared_ptr<const ProgramState> state;
    Commands &commands;

    /// With the size, because the conversion of a QByteArray stops at a NUL character.
    [[nodiscard]] QString fileName() const { return QString::fromUtf8(name.constData(), name.size()); }
};

struct Router::Endpoint {
    const char *method;
    const char *path;  ///< below the root
    bool isPrefix;     ///< whether a name follows
    Answer (Router::*answer)(const Request &request);

    [[nodiscard]] bool matches(const QByteArray &wanted) const {
        return isPrefix ? wanted.startsWith(path) && wanted.size() > int(qstrlen(path)) : wanted == path;
    }
};

const Router::Endpoint Router::endpoints[] = {
    {"GET", "/state", false, &Router::getState},
    {"PUT", "/tracker", false, &Router::putTracker},
    {"GET", "/samples", false, &Router::getSamples},
    {"GET", "/stream", false, &Router::getStream},
    {"POST", "/recording", false, &Router::postRecording},
    {"DELETE", "/recording", false, &Router::deleteRecording},
    {"GET", "/recordings", false, &Router::getRecordings},
    {"GET", "/recordings/", true, &Router::getRecording},
    {"PUT", "/recordings/", true, &Router::putAreas},
    {"POST", "/events", false, &Router::postEvent},
    {"POST", "/calibration", false, &Router::postCalibration},
    {"DELETE", "/calibration", false, &Router::deleteCalibration},
    {"GET", "/openapi.json", false, &Router::getDescription},
};

Router::Router(const AccessPolicy &access) : access_(access) {
    initialiseResources();
}

Router::~Router() {
    close();
}

void Router::open(Commands &commands, Markers &markers) {
    markers_ = &markers;
    connect(
        &markers, &Markers::added, this,
        [this](const Marker &marker) { markerLog_.add(marker, [this] { return newestNumber(*state_.get()); }); },
        Qt::DirectConnection);
    commands_ = &commands;
}

void Router::close() {
    commands_ = nullptr;
    commandsGuard_->close();
    dispatcher_.stop();
}

bool Router::hasPath(const QByteArray &path) {
    return path == root || path.startsWith(root + '/');
}

void Router::service(HttpRequest &request, HttpResponse &response) {
    response.setHeader("Cache-Control", "no-store");
    response.setHeader("Vary", "Origin");
    Answer result;
    try {
        result = answer(request, response);
    } catch (const std::exception &exception) {
        qCWarning(lcHttp, "%s failed: %s", request.getPath().left(maxLoggedLength).constData(), exception.what());
        result = problem(500, "The request failed. The reason is in the log of Ocela.");
    }
    // The response to HEAD has no body.
    if (auto *reply = std::get_if<Reply>(&result); reply && request.getMethod() == "HEAD")
        reply->body.clear();
    std::visit([&](const auto &kind) { send(kind, response); }, result);
}

Router::Answer Router::answer(const HttpRequest &request, HttpResponse &response) {
    const QByteArray refusal = access_.refusalOfProgramRequest(request);
    if (!refusal.isEmpty())
        return forbidden(refusal);
    const QByteArray origin = access_.allowedOriginOf(request);
    if (!origin.isEmpty()) {
        response.setHeader("Access-Control-Allow-Origin", origin);
        response.setHeader("Access-Control-Expose-Headers", "Accept-Ranges, Content-Range, ETag, Retry-After");
    }
    const QByteArray path = pathOf(request).mid(root.size());
    QByteArray methods;
    for (const Endpoint &endpoint : endpoints) {
        if (endpoint.matches(path))
            methods += endpoint.method + QByteArray(", ");
    }
    if (methods.isEmpty())
        return problem(404,
                       "This API has no such path. GET /api/v1/openapi.json returns the description of all paths.");
    methods += "OPTIONS";
    if (request.getMethod() == "OPTIONS")
        return options(methods, response);
    for (const Endpoint &endpoint : endpoints) {
        if (endpoint.method == request.getMethod() && endpoint.matches(path))
            return answerAt(endpoint, path, request);
    }
    return methodNotAllowed(methods);
}

Router::Answer Router::answerAt(const Endpoint &endpoint, const QByteArray &path, const HttpRequest &request) {
    Commands *const commands = commands_;
    if (!commands)
        return starting();
    const int nameStart = endpoint.isPrefix ? int(qstrlen(endpoint.path)) : path.size();
    return (this->*endpoint.answer)({request, path.mid(nameStart), state_.get(), *commands});
}

Reply Router::options(const QByteArray &methods, HttpResponse &response) {
    if (response.getHeaders().contains("Access-Control-Allow-Origin")) {
        response.setHeader("Access-Control-Allow-Methods", methods);
        response.setHeader("Access-Control-Allow-Headers",
                           "Content-Type, If-None-Match, If-Range, Last-Event-ID, Range");
        response.setHeader("Access-Control-Max-Age", preflightLifetimeSeconds);
    }
    Reply reply = emptyReply(204);
    reply.headers.push_back({"Allow", methods});
    return reply;
}

Router::Answer Router::getState(const Request &request) {
    RequestReader reader(request.http);
    reader.readQuery({});
    if (reader.problem())
        return *reader.problem();
    return jsonReply(200, stateJson_.write(*request.state));
}

Router::Answer Router::putTracker(const Request &request) {
    RequestReader reader(request.http);
    reader.readQuery({});
    reader.readBody({"name"});
    const QString name = reader.bodyText("name");
    if (reader.problem())
        return *reader.problem();
    return request.commands.selectTracker(name);
}

Router::Answer Router::getSamples(const Request &request) {
    RequestReader reader(request.http);
    reader.readQuery({"after", "limit"});
    const std::optional<quint64> after = reader.number("after", 0, maxNumber);
    const quint64 limit = reader.number("limit", 1, maxSampleCount).value_or(maxSampleCount);
    if (reader.problem())
        return *reader.problem();

    const SamplesAfter found = after ? samplesAfter(*after) : recentSamples();
    const SampleText text = sampleText(run_, found.samples, static_cast<int>(limit));
    const QByteArray next = QByteArray::number(text.count > 0 ? text.lastNumber : found.position);
    const QByteArray missed = text.missedCount ? QByteArray::number(*text.missedCount) : "null";
    return Reply{200,
                 "application/json",
                 {R"({"run":")" + run_.id() + R"(","next":)" + next + R"(,"missed":)" + missed + R"(,"samples":[)",
                  text.json, "]}"},
                 {}};
}

/// Returns the samples of the selected tracker after `number`.
Router::SamplesAfter Router::samplesAfter(quint64 number) const {
    std::shared_ptr<const ProgramState> state;
    SamplesAfter found;
    do {
        state = state_.get();
        found = {std::max(number, state->selection().after), {}};
        if (state->tracker)
            found.samples = state->tracker->samplesSince(found.position);
    } while (!state_.isSelected(state->selection()));
    const quint64 newest = std::max(newestNumber(*state), state->selection().after);
    // Only an earlier run of the program can have had such a number.
    if (number > newest)
        return {newest, {{}, std::nullopt, 0}};
    const std::optional<quint64> earlierCount = state->countInEarlierSelections(number);
    std::optional<quint64> &missedCount = found.samples.missedCount;
    missedCount = missedCount && earlierCount ? std::make_optional(*missedCount + *earlierCount) : std::nullopt;
    return found;
}

/// Returns the samples that the selected tracker has delivered in the last two seconds.
Router::SamplesAfter Router::recentSamples() const {
    SamplesAfter found = samplesAfter(0);
    const auto oldest =
        std::chrono::steady_clock::now() - std::chrono::milliseconds(EyetrackerInterface::sampleWindowMs);
    const auto isRecent = [oldest](const NumberedSample &entry) { return entry.arrival >= oldest; };
    std::vector<NumberedSample> &samples = found.samples.samples;
    if (!samples.empty())
        found.position = samples.back().number;
    samples.erase(samples.begin(), std::find_if(samples.begin(), samples.end(), isRecent));
    found.samples.missedCount = 0;
    return found;
}

Router::Answer Router::getStream(const Request &request) {
    RequestReader reader(request.http);
    reader.readQuery({"after", "interval"});
    StreamRequest stream;
    const QByteArray after = reader.text("after");
    if (!after.contains(':'))
        stream.after = reader.number("after", 0, maxNumber);
    else if (const std::optional<EventId> id = EventId::parse(after))
        resume(*id, stream);
    else
        reader.fail(400, "The parameter after must be a whole number or the id of an event.");
    stream.interval = std::chrono::milliseconds(reader.number("interval", 0, maxIntervalMs).value_or(0));
    if (reader.problem())
        return *reader.problem();
    // A browser repeats the query of its first request, so the id replaces its number.
    const QByteArray lastId = request.http.getHeader("Last-Event-ID");
    if (!lastId.isEmpty())
        resume(EventId::parse(lastId).value_or(EventId()), stream);
    stream.isPermitted = [this, &http = request.http] { return access_.refusalOfProgramRequest(http).isEmpty(); };
    return stream;
}

void Router::resume(const EventId &id, StreamRequest &stream) const {
    stream.after = id.number;
    stream.markerCount = id.markerCount;
    stream.isOfOtherRun = id.run != run_.id();
}

Router::Answer Router::postRecording(const Request &request) {
    RequestReader reader(request.http);
    reader.readQuery({});
    reader.readBody({"name", "path"});
    const QString name = reader.has("name") ? reader.bodyText("name") : QString();
    const QString path = reader.has("path") ? reader.bodyText("path") : QString();
    if (reader.has("name") && reader.has("path"))
        reader.fail(422, "\"name\" and \"path\" exclude each other.");
    else if (reader.has("name") && !isFileName(name))
        reader.fail(422,
                    "\"name\" must be the name of a file: without a folder, without any of < > : \" / \\ | ? *, and "
                    "at most 200 bytes long.");
    if (reader.problem())
        return *reader.problem();
    // The file system may hang, and this object and the commands may be destroyed meanwhile.
    const std::shared_ptr<LifetimeGuard> guard = commandsGuard_;
    const RecordTarget target =
        reader.has("path") ? targetAt(path, access_) : targetInFolder(request.state->recordsFolder, name);
    if (const auto *refusal = std::get_if<Reply>(&target))
        return *refusal;
    Reply reply;
    const auto start = [&] { reply = request.commands.startRecording(std::get<QString>(target)); };
    return guard->use(start) ? reply : starting();
}

Router::Answer Router::deleteRecording(const Request &request) {
    RequestReader reader(request.http);
    reader.readQuery({});
    if (reader.problem())
        return *reader.problem();
    return request.commands.stopRecording();
}

Router::Answer Router::getRecordings(const Request &request) {
    RequestReader reader(request.http);
    reader.readQuery({});
    if (reader.problem())
        return *reader.problem();
    QJsonArray array;
    for (const record_files::Entry &entry : record_files::list(request.state->recordsFolder))
        array.append(QJsonObject{
            {"name", entry.name}, {"bytes", entry.sizeBytes}, {"modified", entry.modified.toMSecsSinceEpoch()}});
    return jsonReply(200, {{"recordings", array}});
}

Router::Answer Router::getRecording(const Request &request) {
    RequestReader reader(request.http);
    reader.readQuery({"file"});
    const std::optional<record_files::Kind> kind = fileKind(reader.text("file"));
    if (!kind)
        reader.fail(422, "\"file\" must be record, samples, events or areas.");
    if (reader.problem())
        return *reader.problem();
    record_files::OpenFile file = record_files::open(request.state->recordsFolder, request.fileName(), *kind);
    if (!file.file)
        return kind == record_files::Kind::Record
                   ? noRecordFile()
                   : problem(404, "The records folder has no such file beside a record file of this name.");
    const QByteArray tag = file.tag();
    if (request.http.getHeader("If-None-Match") == tag)
        return notModified(tag);
    const QByteArray condition = request.http.getHeader("If-Range");
    const QByteArray range = condition.isEmpty() || condition == tag ? request.http.getHeader("Range") : QByteArray();
    const bool isJson = kind == record_files::Kind::Areas;
    return Download{std::move(file), isJson ? "application/json" : "text/csv; charset=utf-8", range};
}

Router::Answer Router::putAreas(const Request &request) {
    RequestReader reader(request.http);
    reader.readQuery({"file"});
    reader.readBody({"format", "version", "record", "screen", "areas"});
    if (reader.text("file") != "areas")
        reader.fail(422, "\"file\" must be areas. The other files of a recording cannot be replaced.");
    if (reader.bodyText("format") != areasFormat || !reader.hasArray("areas"))
        reader.fail(422, "The body must be an areas file: \"format\" is \"Ocela areas\", and \"areas\" is an array.");
    if (reader.problem())
        return *reader.problem();
    const QString name = request.fileName();
    const QString &folder = request.state->recordsFolder;
    if (!record_files::open(folder, name).file)
        return noRecordFile();
    const QString reason = record_files::saveAreas(folder, name, request.http.getBody());
    if (!reason.isEmpty())
        return problem(500, "The areas cannot be saved: " + reason + '.');
    return jsonReply(200, {{"path", QDir(folder).filePath(record_companions::areasPath(name))}});
}

Router::Answer Router::postEvent(const Request &request) {
    RequestReader reader(request.http);
    reader.readQuery({});
    reader.readBody({"text", "time"});
    const QString text = reader.bodyText("text");
    if (text.isEmpty() || Markers::lengthOf(text) > Markers::maxTextLength)
        reader.fail(422, QString("\"text\" must have 1 to %1 characters.").arg(Markers::maxTextLength));
    std::optional<ProgramRun::TimePoint> time;
    if (reader.has("time")) {
        const double timeMs = reader.bodyNumber("time");
        const auto now = std::chrono::steady_clock::now();
        const double earliestMs = run_.timeMs(std::max(run_.start(), now - Markers::maxTimeDifference));
        if (timeMs < earliestMs || timeMs > run_.timeMs(now + maxFuture))
            reader.fail(422,
                        "\"time\" must be in ms since 1970 UTC, since the start of Ocela, in the last 24 hours and not "
                        "in the future.");
        else
            time = run_.timePoint(timeMs);
    }
    if (reader.problem())
        return *reader.problem();
    QJsonObject marker = markerJson(markers_->add(text, time), run_);
    marker.remove("text");
    return jsonReply(201, marker);
}

Router::Answer Router::postCalibration(const Request &request) {
    RequestReader reader(request.http);
    reader.readQuery({});
    reader.readBody({"screen"});
    const int screen = reader.has("screen") ? reader.bodyInteger("screen", 1, std::numeric_limits<int>::max()) : 1;
    if (reader.problem())
        return *reader.problem();
    return request.commands.calibrate(screen);
}

Router::Answer Router::deleteCalibration(const Request &request) {
    RequestReader reader(request.http);
    reader.readQuery({});
    if (reader.problem())
        return *reader.problem();
    return request.commands.stopCalibration();
}

Router::Answer Router::getDescription(const Request &request) {
    RequestReader reader(request.http);
    reader.readQuery({});
    if (reader.problem())
        return *reader.problem();
    QFile file(":/api/v1/openapi.json");
    if (!file.open(QIODevice::ReadOnly))
        return problem(500, "The description is missing.");
    return Reply{200, "application/json", {file.readAll()}, {}};
}

void Router::send(const Reply &reply, HttpResponse &response) {
    response.setStatus(reply.status, statusText(reply.status));
    if (!reply.contentType.isEmpty())
        response.setHeader("Content-Type", reply.contentType);
    for (const auto &[name, value] : reply.headers)
        response.setHeader(name, value);
    response.write(reply.body, true);
}

void Router::send(const StreamRequest &request, HttpResponse &response) {
    const StreamDispatcher::Slot slot(dispatcher_);
    if (!slot.isGranted()) {
        send(problem(429, QString("%1 streams are open, which is the maximum. Close one first.")
                              .arg(StreamDispatcher::maxStreams)),
             response);
        return;
    }
    const StreamSources sources{run_, state_, stateJson_, sampleTexts_, markerLog_, dispatcher_};
    EventStream(sources, request, response).run();
}

void Router::send(const Download &download, HttpResponse &response) {
    const record_files::OpenFile &file = download.file;
    const QByteArray total = QByteArray::number(file.sizeBytes);
    const std::optional<ByteRange> range = parseByteRange(download.range, file.sizeBytes);
    if (range && !range->isSatisfiable()) {
        response.setHeader("Content-Range", "bytes */" + total);
        send(problem(416, "The file has only " + total + " bytes."), response);
        return;
    }
    const ByteRange part = range.value_or(ByteRange{0, file.sizeBytes});
    const int status = range ? 206 : 200;
    response.setStatus(status, statusText(status));
    if (range)
        response.setHeader("Content-Range", "bytes " + QByteArray::number(part.first) + '-' +
                                                QByteArray::number(part.first + part.sizeBytes - 1) + '/' + total);
    response.setHeader("Content-Type", download.contentType);
    response.setHeader("Cache-Control", "no-cache");
    response.setHeader("Accept-Ranges", "bytes");
    response.setHeader("ETag", file.tag());
    response.setHeader("Last-Modified", httpDate(file.modified));
    response.writeFile(*file.file, part.first, part.sizeBytes);
}
