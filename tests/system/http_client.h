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
        const QByteArray url = "http://127.0.0.1:" + QByteArray::number(apiPort) + path;
        const std::unique_ptr<QNetworkReply> reply(network_.get(QNetworkRequest(QUrl::fromEncoded(url))));
        const bool finished = QTest::qWaitFor([&] { return reply->isFinished(); }, timeoutMs);
        return finished ? reply->readAll() : QByteArray();
    }
    [[nodiscard]] QJsonObject ask(const QByteArray &path) { return QJsonDocument::fromJson(get(path)).object(); }
    [[nodiscard]] QJsonObject lastSample() { return ask("/lastsample")["sample"].toObject(); }
    void forgetConnections() { network_.clearConnectionCache(); }

private:
    QNetworkAccessManager network_;
};
