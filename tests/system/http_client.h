#pragma once

#include "system/patience.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTest>
#include <memory>

constexpr quint16 apiPort = 3735;

/// Another program that asks this one over HTTP. The paths are sent as they are: escape what needs it.
class HttpClient {
public:
    /// The body of the answer; empty without one.
    [[nodiscard]] QByteArray get(const QByteArray &path) {
        const QByteArray url = "http://127.0.0.1:" + QByteArray::number(apiPort) + path;
        const std::unique_ptr<QNetworkReply> reply(network_.get(QNetworkRequest(QUrl::fromEncoded(url))));
        const bool finished = QTest::qWaitFor([&] { return reply->isFinished(); }, patienceMs);
        return finished ? reply->readAll() : QByteArray();
    }
    [[nodiscard]] QJsonObject ask(const QByteArray &path) { return QJsonDocument::fromJson(get(path)).object(); }
    [[nodiscard]] QJsonObject lastSample() { return ask("/lastsample")["sample"].toObject(); }
    void forgetConnections() { network_.clearConnectionCache(); }

private:
    QNetworkAccessManager network_;
};
