#include "api/v1/event_stream.h"

#include "core/eyetracker_interface.h"
#include "http/http_response.h"

#include <QJsonDocument>
#include <algorithm>

using namespace api_v1;

namespace {

/// The limit of the buffer for unsent data. The server notices a client that stops reading after this number of bytes.
constexpr int sendBufferBytes = 64 * 1024;
constexpr std::chrono::seconds stateInterval(1);
constexpr std::chrono::seconds permissionInterval(1);
/// A reader may stop for a minute, and then gets the number of the missed samples.
constexpr std::chrono::minutes maxReaderPause(2);

QByteArray compact(const QJsonObject &object) {
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

QByteArray missedJson(quint64 sampleCount, quint64 markerCount) {
    QJsonObject missed{{"count", static_cast<qint64>(sampleCount)}};
    if (markerCount > 0)
        missed.insert("events", static_cast<qint64>(markerCount));
    return compact(missed);
}

}  // namespace

quint64 api_v1::newestNumber(const ProgramState &state) {
    quint64 newest = 0;
    for (const EyetrackerInterface *tracker : state.trackers)
        newest = std::max(newest, tracker->lastNumberedSample().number);
    return newest;
}

QJsonObject api_v1::markerJson(const Marker &marker, const ProgramRun &run) {
    return {{"text", marker.text},
            {"time", run.timeMs(marker.time)},
            {"number", static_cast<qint64>(marker.number)},
            {"recorded", marker.recorded}};
}

EventStream::EventStream(const StreamSources &sources, const StreamRequest &request, HttpResponse &response)
    : sources_(sources), request_(request), response_(response), state_(sources.state.get()) {}

void EventStream::run() {
    response_.setHeader("Content-Type", "text/event-stream");
    response_.limitSendBuffer(sendBufferBytes);
    response_.allowPauses(maxReaderPause);
    start();
    while (response_.isWritable() && !sources_.dispatcher.isStopping() && isStillPermitted()) {
        sendNews();
        waitForNews();
    }
    response_.write(QByteArray(), true);
}

void EventStream::start() {
    // The markers first: those that are set from now on have a higher position.
    markerPosition_ = sources_.markers.count();
    const quint64 newest = std::max(newestNumber(*state_), state_->selectedAfter);
    const bool isUnknown = request_.isOfOtherRun || (request_.after && *request_.after > newest);
    position_ = newest;
    if (request_.after && !isUnknown) {
        position_ = std::max(*request_.after, state_->selectedAfter);
        markerPosition_ = sources_.markers.firstAfter(*request_.after);
    }
    pieces_.append("retry: 1000\n\n");
    appendState(Clock::now());
    if (isUnknown)
        appendEvent("missed", R"({"count":null})");
}

/// The user can change the access rights while the stream is open.
bool EventStream::isStillPermitted() {
    const Clock::time_point now = Clock::now();
    if (now < nextPermission_)
        return true;
    nextPermission_ = now + permissionInterval;
    return request_.isPermitted();
}

void EventStream::sendNews() {
    const Clock::time_point now = Clock::now();
    followState(now);
    appendSamples(now);
    // Read after the samples and sent before them: if the connection breaks in between, the markers that the client
    // lacks have a higher position than its last sample.
    const QVector<QByteArray> markers = newMarkers();
    if (markers.isEmpty() && pieces_.isEmpty())
        return;
    response_.write(markers + pieces_);
    pieces_.clear();
}

void EventStream::followState(Clock::time_point now) {
    const std::shared_ptr<const ProgramState> state = sources_.state.get();
    if (state->version != state_->version) {
        if (state->tracker != state_->tracker) {
            if (state_->tracker)
                appendRest(*state_->tracker, state->selectedAfter);
            position_ = std::max(position_, state->selectedAfter);
        }
        state_ = state;
        appendState(now);
    } else if (now >= nextState_) {
        pieces_.append(": heartbeat\n\n");
        appendState(now);
    }
}

/// Appends the samples that the earlier tracker delivered until another one was selected.
void EventStream::appendRest(const EyetrackerInterface &earlierTracker, quint64 lastNumber) {
    SamplesSince rest = earlierTracker.samplesSince(position_);
    const auto isLater = [lastNumber](const NumberedSample &entry) { return entry.number > lastNumber; };
    rest.samples.erase(std::find_if(rest.samples.begin(), rest.samples.end(), isLater), rest.samples.end());
    append(sampleText(sources_.run, rest, SampleTexts::maxCount));
}

void EventStream::appendSamples(Clock::time_point now) {
    if (!state_->tracker || now < nextSamples_)
        return;
    const SampleText text = sources_.sampleTexts.after(*state_->tracker, position_);
    append(text);
    if (text.count > 0)
        nextSamples_ = now + request_.interval;
}

void EventStream::append(const SampleText &text) {
    if (text.missedCount > 0)
        appendEvent("missed", missedJson(text.missedCount, 0));
    if (text.count == 0)
        return;
    position_ = text.lastNumber;
    pieces_.append("id: " + sources_.run.id() + ':' + QByteArray::number(position_) + "\nevent: samples\ndata: [");
    pieces_.append(text.json);
    pieces_.append("]\n\n");
}

void EventStream::appendState(Clock::time_point now) {
    appendEvent("state", compact(sources_.stateJson.write(*state_)));
    nextState_ = now + stateInterval;
}

void EventStream::appendEvent(const QByteArray &name, const QByteArray &json) {
    pieces_.append("event: " + name + "\ndata: " + json + "\n\n");
}

QVector<QByteArray> EventStream::newMarkers() {
    const MarkerLog::Since news = sources_.markers.since(markerPosition_);
    markerPosition_ = news.next;
    QVector<QByteArray> pieces;
    if (news.missedCount > 0)
        pieces.append("event: missed\ndata: " + missedJson(0, news.missedCount) + "\n\n");
    for (const Marker &marker : news.markers)
        pieces.append("event: event\ndata: " + compact(markerJson(marker, sources_.run)) + "\n\n");
    return pieces;
}

void EventStream::waitForNews() {
    if (Clock::now() < nextSamples_)
        seen_ = sources_.dispatcher.waitForChanges(seen_, std::min(nextState_, nextSamples_));
    else
        seen_ = sources_.dispatcher.waitForSamples(seen_, nextState_);
}
