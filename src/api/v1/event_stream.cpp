#include "api/v1/event_stream.h"

#include "core/eyetracker_interface.h"
#include "http/http_response.h"

#include <QJsonDocument>
#include <algorithm>
#include <utility>

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

QByteArray missedJson(std::optional<quint64> sampleCount, quint64 markerCount) {
    QJsonObject missed{{"count", sampleCount ? QJsonValue(static_cast<qint64>(*sampleCount)) : QJsonValue()}};
    if (markerCount > 0)
        missed.insert("events", static_cast<qint64>(markerCount));
    return compact(missed);
}

}  // namespace

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
    const quint64 newest = std::max(newestNumber(*state_), state_->selection().after);
    const bool isUnknown = request_.isOfOtherRun || (request_.after && *request_.after > newest);
    position_ = newest;
    if (request_.after && !isUnknown) {
        position_ = *request_.after;
        markerPosition_ = std::min(
            markerPosition_, request_.markerCount ? *request_.markerCount : sources_.markers.firstAfter(position_));
    }
    comment_ = "retry: 1000\n\n";
    // If the connection breaks before the client is told that it has missed something, it must be told the next time.
    appendState(Clock::now(), isUnknown ? std::nullopt : std::make_optional(position_));
    if (isUnknown)
        appendMissed(std::nullopt);
    else
        startSelection();
    send({});
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
    const quint64 sentNumber = position_;
    followState(now);
    appendSamples(now);
    // Read after the samples and sent before them: if the connection breaks in between, the markers that the client
    // lacks have a higher position than its last sample.
    send(takeMarkers(sentNumber));
}

void EventStream::send(const QVector<QByteArray> &markers) {
    QVector<QByteArray> all = markers;
    if (!comment_.isEmpty())
        all.prepend(std::exchange(comment_, {}));
    for (const Event &event : std::exchange(events_, {}))
        all += pieces(event);
    if (!all.isEmpty())
        response_.write(all);
}

void EventStream::followState(Clock::time_point now) {
    const std::shared_ptr<const ProgramState> earlier = std::exchange(state_, sources_.state.get());
    if (state_->selection().index != earlier->selection().index) {
        appendRest(earlier->selection());
        appendState(now, position_);
        startSelection();
    } else if (state_->version != earlier->version) {
        appendState(now, position_);
    } else if (now >= nextState_) {
        comment_ = ": heartbeat\n\n";
        appendState(now, position_);
    }
}

/// Appends the samples that the earlier tracker delivered until another one was selected.
void EventStream::appendRest(const Selection &earlier) {
    const Selection *const next = state_->selectionAfter(earlier);
    if (!next || !earlier.tracker || position_ >= next->after)
        return;
    const SampleText text =
        sampleText(sources_.run, earlier.tracker->samplesSince(position_, next->after), SampleTexts::maxCount);
    if (text.count == 0)
        position_ = next->after;
    append(text);
}

/// Skips the samples of all earlier selections, and appends their number.
void EventStream::startSelection() {
    const std::optional<quint64> skippedCount = state_->countInEarlierSelections(position_);
    position_ = std::max(position_, state_->selection().after);
    if (skippedCount != quint64(0))
        appendMissed(skippedCount);
}

void EventStream::appendSamples(Clock::time_point now) {
    if (!state_->tracker || now < nextSamples_)
        return;
    const SampleText text = sources_.sampleTexts.after(*state_->tracker, position_);
    // If another tracker was selected meanwhile, followState() sends the samples until then.
    if (!sources_.state.isSelected(state_->selection()))
        return;
    append(text);
    if (text.count > 0)
        nextSamples_ = now + request_.interval;
}

void EventStream::append(const SampleText &text) {
    if (text.missedCount != quint64(0)) {
        if (text.count > 0)
            position_ = text.firstNumber - 1;
        appendMissed(text.missedCount);
    }
    if (text.count == 0)
        return;
    position_ = text.lastNumber;
    events_.append({"samples", position_, {"[", text.json, "]"}});
}

void EventStream::appendState(Clock::time_point now, std::optional<quint64> number) {
    events_.append({"state", number, {compact(sources_.stateJson.write(*state_))}});
    nextState_ = now + stateInterval;
}

void EventStream::appendMissed(std::optional<quint64> sampleCount) {
    events_.append({"missed", position_, {missedJson(sampleCount, 0)}});
}

QVector<QByteArray> EventStream::takeMarkers(quint64 sentNumber) {
    const MarkerLog::Since news = sources_.markers.since(markerPosition_);
    markerPosition_ = news.next - news.markers.size();
    QVector<QByteArray> all;
    if (news.missedCount > 0)
        all += pieces({"missed", sentNumber, {missedJson(0, news.missedCount)}});
    for (const Marker &marker : news.markers) {
        ++markerPosition_;
        all += pieces({"event", sentNumber, {compact(markerJson(marker, sources_.run))}});
    }
    return all;
}

QVector<QByteArray> EventStream::pieces(const Event &event) const {
    QByteArray head = "event: " + event.name + "\ndata: ";
    if (event.number)
        head.prepend("id: " + sources_.run.id() + ':' + QByteArray::number(*event.number) + ':' +
                     QByteArray::number(markerPosition_) + '\n');
    return QVector<QByteArray>{head} + event.data + QVector<QByteArray>{"\n\n"};
}

void EventStream::waitForNews() {
    if (Clock::now() < nextSamples_)
        changeCount_ = sources_.dispatcher.waitForChanges(changeCount_, std::min(nextState_, nextSamples_));
    else
        changeCount_ = sources_.dispatcher.waitForSamples(position_, changeCount_, nextState_);
}
