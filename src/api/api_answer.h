#pragma once

#include <QJsonDocument>
#include <QJsonObject>
#include <QVector>

class EyetrackerInterface;
class SampleJsonCache;

/// What the API answers to one request, before it is a document or text. "time" is added when it becomes one.
struct ApiAnswer {
    enum class Samples { None, Last, All };

    bool result = true;
    QJsonObject more = {};  ///< beside "result", "time" and the samples
    Samples samples = Samples::None;
    EyetrackerInterface *tracker = nullptr;  ///< whose samples; set if there are to be any
    QString filePath = {};                   ///< of the existing file to be sent instead; empty if there is none

    [[nodiscard]] QJsonDocument toDocument() const;
    /// The bytes of the document in its compact form, in pieces to be sent one after the other. Samples do not become
    /// documents on the way; their texts are taken from `cache`.
    [[nodiscard]] QVector<QByteArray> toJson(SampleJsonCache &cache) const;
};
