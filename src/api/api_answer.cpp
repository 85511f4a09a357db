#include "api/api_answer.h"

#include "api/sample_json_cache.h"
#include "core/eyetracker_interface.h"
#include "toolkit/base/text_helper.h"

#include <QJsonArray>

namespace {

QString currentTime() {
    return TextHelper::DateTimeFileString(QDateTime(), true);
}

QJsonObject objectOf(const ResultAnswer &answer) {
    QJsonObject object = answer.details;
    object.insert("result", answer.result);
    return object;
}

QJsonObject objectOf(const LastSampleAnswer &answer) {
    return {{"result", true}, {"sample", answer.tracker.getLastSample().toJson()}};
}

QJsonObject objectOf(const SamplesAnswer &answer) {
    QJsonArray samples;
    for (const EyeTrackingSample &sample : answer.tracker.getSamples())
        samples.append(sample.toJson());
    return {{"result", true}, {"sampleCount", samples.size()}, {"samples", samples}};
}

QJsonObject objectOf(const FileAnswer & /*answer*/) {
    return {{"result", true}};
}

/// The end of a document with samples, where "time" is the last key.
QByteArray timeAndEnd() {
    return R"(,"time":")" + currentTime().toLatin1() + R"("})";
}

QVector<QByteArray> jsonOf(const LastSampleAnswer &answer, SampleJsonCache &cache) {
    return {QByteArrayLiteral(R"({"result":true,"sample":)"), cache.lastSample(answer.tracker), timeAndEnd()};
}

QVector<QByteArray> jsonOf(const SamplesAnswer &answer, SampleJsonCache &cache) {
    const SampleJsonBlocks::List list = cache.samples(answer.tracker);
    const QByteArray count = QByteArray::number(list.sampleCount);
    QVector<QByteArray> pieces{R"({"result":true,"sampleCount":)" + count + R"(,"samples":[)"};
    pieces += list.pieces;
    pieces += ']' + timeAndEnd();
    return pieces;
}

/// Answers without samples.
template <typename Answer>
QVector<QByteArray> jsonOf(const Answer &answer, const SampleJsonCache & /*cache*/) {
    return {api_answer::toDocument(answer).toJson(QJsonDocument::Compact)};
}

}  // namespace

QJsonDocument api_answer::toDocument(const ApiAnswer &answer) {
    QJsonObject object = std::visit([](const auto &kind) { return objectOf(kind); }, answer);
    object.insert("time", currentTime());
    return QJsonDocument(object);
}

QVector<QByteArray> api_answer::toJson(const ApiAnswer &answer, SampleJsonCache &cache) {
    return std::visit([&](const auto &kind) { return jsonOf(kind, cache); }, answer);
}
