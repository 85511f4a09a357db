#pragma once

#include <QJsonDocument>
#include <QJsonObject>
#include <QVector>
#include <variant>

class EyetrackerInterface;
class SampleJsonCache;

/// "result" and further JSON members.
struct ResultAnswer {
    bool result = true;
    QJsonObject details = {};
};

/// The newest sample of a tracker.
struct LastSampleAnswer {
    EyetrackerInterface &tracker;
};

/// All samples in the window of a tracker.
struct SamplesAnswer {
    EyetrackerInterface &tracker;
};

/// An existing file, to be sent instead of a document. Its document has "result": true.
struct FileAnswer {
    QString path;
};

/// The answer of the API to one request, before it is serialized.
using ApiAnswer = std::variant<ResultAnswer, LastSampleAnswer, SamplesAnswer, FileAnswer>;

/// Both functions add "time", and read the samples when they are called.
namespace api_answer {

[[nodiscard]] QJsonDocument toDocument(const ApiAnswer &answer);

/// Returns the bytes of toDocument() in compact form, in pieces to be sent one after the other. Samples are taken from
/// `cache` as text.
[[nodiscard]] QVector<QByteArray> toJson(const ApiAnswer &answer, SampleJsonCache &cache);

}  // namespace api_answer
