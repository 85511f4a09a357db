#pragma once

#include "system/timeout.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTest>
#include <memory>

constexpr quint16 apiPort = 3735;

/// An HTTP client of the program. Paths are sent unchanged, so the caller encodes them.
class HttpClient {
public:
    /// Returns the body of the response, or an empty array after an error.
    [[nodiscard]] QByteArray get(const QByteArray &path) {
        const std::unique_ptr<QNetworkReply> reply(network_.get(request(path)));
        return bodyOf(*reply);
    }
    [[nodiscard]] QJsonObject ask(const QByteArray &path) { return QJsonDocument::fromJson(get(path)).object(); }
    [[nodiscard]] QJsonObject lastSample() { return ask("/lastsample")["sample"].toObject(); }
    /// Sets a marker, and returns the answer.
    [[nodiscard]] QJsonObject mark(const QString &text) {
        QNetworkRequest post = request("/api/v1/events");
        post.setHeader(QNetworkRequest::ContentTypeHeader, "application/json");
        const std::unique_ptr<QNetworkReply> reply(
            network_.post(post, QJsonDocument(QJsonObject{{"text", text}}).toJson()));
        return QJsonDocument::fromJson(bodyOf(*reply)).object();
    }
    void forgetConnections() { network_.clearConnectionCache(); }

private:
    [[nodiscard]] static QNetworkRequest request(const QByteArray &path) {
        return QNetworkRequest(QUrl::fromEncoded("http://127.0.0.1:" + QByteArray::number(apiPort) + path));
    }
    [[nodiscard]] static QByteArray bodyOf(QNetworkReply &reply) {
        const bool finished = QTest::qWaitFor([&] { return reply.isFinished(); }, timeoutMs);
        return finished ? reply.readAll() : QByteArray();
    }

    QNetworkAccessManager network_;
};
