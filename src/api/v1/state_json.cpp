#include "api/v1/state_json.h"

#include "core/eyetracker_interface.h"

#include <QJsonArray>
#include <algorithm>

using namespace api_v1;

namespace {

using Milliseconds = std::chrono::duration<double, std::milli>;

/// Reading the sample window of a fast tracker takes 0.1 ms, and every stream writes the state once a second.
constexpr std::chrono::milliseconds ratesLifetime(250);

QJsonValue valueOf(const std::optional<double> &number) {
    return number ? QJsonValue(*number) : QJsonValue();
}

}  // namespace

QJsonObject StateJson::write(const ProgramState &state) {
    QJsonObject json = state.json;
    json.insert("run", QString::fromLatin1(run_.id()));
    if (state.tracker)
        addTracker(json, *state.tracker);
    json.insert("recordings", recordings(state.trackers));
    json.insert("time", run_.timeMs(std::chrono::steady_clock::now()));
    return json;
}

void StateJson::addTracker(QJsonObject &json, const EyetrackerInterface &tracker) {
    const auto now = std::chrono::steady_clock::now();
    const NumberedSample newest = tracker.lastNumberedSample();
    const Rates rates = cachedRates(tracker, now);
    QJsonObject object = json["tracker"].toObject();
    object.insert("sampleRateHz", valueOf(rates.sampleRateHz));
    object.insert("validShare", valueOf(rates.validShare));
    const double ageMs = std::max(0.0, Milliseconds(now - newest.arrival).count());
    object.insert("lastSampleAgeMs", newest.number == 0 ? QJsonValue() : QJsonValue(ageMs));
    object.insert("newest", static_cast<qint64>(newest.number));
    json.insert("tracker", object);
}

StateJson::Rates StateJson::cachedRates(const EyetrackerInterface &tracker, ProgramRun::TimePoint now) {
    return rates_.with([&](CachedRates &cached) {
        if (cached.tracker != &tracker || now - cached.time > ratesLifetime)
            cached = {&tracker, now, ratesOf(tracker, now)};
        return cached.rates;
    });
}

StateJson::Rates StateJson::ratesOf(const EyetrackerInterface &tracker, ProgramRun::TimePoint now) {
    if (!tracker.isConnected())
        return {};
    const std::vector<NumberedSample> samples = tracker.samplesSince(0).samples;
    const auto oldest = now - std::chrono::milliseconds(EyetrackerInterface::sampleWindowMs);
    const auto isRecent = [oldest](const NumberedSample &entry) { return entry.arrival >= oldest; };
    const auto first = std::find_if(samples.begin(), samples.end(), isRecent);
    const auto count = static_cast<double>(samples.end() - first);
    if (count == 0)
        return {};
    const auto isValid = [](const NumberedSample &entry) { return entry.sample.valid; };
    const auto validCount = static_cast<double>(std::count_if(first, samples.end(), isValid));
    const std::chrono::duration<double> length = samples.back().arrival - first->arrival;
    Rates rates;
    rates.validShare = validCount / count;
    if (length.count() > 0)
        rates.sampleRateHz = (count - 1) / length.count();
    return rates;
}

QJsonArray StateJson::recordings(const std::vector<EyetrackerInterface *> &trackers) {
    QJsonArray array;
    for (const EyetrackerInterface *tracker : trackers) {
        if (const std::optional<RunningRecording> recording = tracker->runningRecording())
            array.append(QJsonObject{{"tracker", tracker->name()},
                                     {"path", recording->path},
                                     {"startedAt", Milliseconds(recording->startedAt.time_since_epoch()).count()},
                                     {"durationMs", static_cast<qint64>(recording->length.duration.count())},
                                     {"samples", static_cast<qint64>(recording->length.sampleCount)},
                                     {"events", recording->markerCount}});
    }
    return array;
}
