#include "api/api_answer.h"

#include "api/sample_json_cache.h"
#include "core/eyetracker_interface.h"
#include "toolkit/text_helper.h"

#include <QJsonArray>

namespace {

QString currentTime() {
    return TextHelper::DateTimeFileString(QDateTime(), true);
}

QJsonArray toArray(const QList<EyeTrackingSample> &samples) {
    QJsonArray array;
    for (const EyeTrackingSample &sample : samples)
        array.append(sample.toJson());
    return array;
}

/// The end of every document: no key sorts behind "time" but that of "/status", which has no samples.
QByteArray timeAndEnd() {
    return R"(,"time":")" + currentTime().toLatin1() + R"("})";
}

QVector<QByteArray> lastSampleJson(const QByteArray &sample) {
    return {QByteArrayLiteral(R"({"result":true,"sample":)"), sample, timeAndEnd()};
}

QVector<QByteArray> samplesJson(const SampleJsonBlocks::List &list) {
    const QByteArray count = QByteArray::number(list.sampleCount);
    QVector<QByteArray> pieces{R"({"result":true,"sampleCount":)" + count + R"(,"samples":[)"};
    pieces += list.pieces;
    pieces += ']' + timeAndEnd();
    return pieces;
}

}  // namespace

QJsonDocument ApiAnswer::toDocument() const {
    QJsonObject object = more;
    object.insert("result", result);
    if (samples == Samples::Last)
        object.insert("sample", tracker->getLastSample().toJson());
    if (samples == Samples::All) {
        const QJsonArray array = toArray(tracker->getSamples());
        object.insert("sampleCount", array.size());
        object.insert("samples", array);
    }
    object.insert("time", currentTime());
    return QJsonDocument(object);
}

QVector<QByteArray> ApiAnswer::toJson(SampleJsonCache &cache) const {
    switch (samples) {
        case Samples::Last:
            return lastSampleJson(cache.lastSample(*tracker));
        case Samples::All:
            return samplesJson(cache.samples(*tracker));
        case Samples::None:
            break;
    }
    return {toDocument().toJson(QJsonDocument::Compact)};
}
