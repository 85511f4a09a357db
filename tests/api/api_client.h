#pragma once

#include "api/ocela_http_exchange.h"
#include "api/ocela_http_request_handler.h"
#include "http/http_request.h"
#include "http/http_response.h"
#include "http/http_settings.h"
#include "support/recording_output.h"

#include <QHostAddress>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSettings>
#include <QTemporaryDir>
#include <memory>

/// Calls the API without a network connection. Paths are sent unchanged, so percent-encode them.
class ApiClient {
public:
    struct Reply {
        QByteArray head;
        QByteArray body;

        [[nodiscard]] bool isDocument() const { return head.contains("Content-Type: text/json; charset=UTF-8\r\n"); }
        /// The document without "time", which differs in every answer.
        [[nodiscard]] QJsonObject answer() const { return withoutTime(QJsonDocument::fromJson(body)); }
    };
    struct ProcessedRequest {
        QJsonObject answer;
        QString filePath;
    };

    /// Sends a GET request to a request handler. Each header ends with CR LF.
    Reply get(const QByteArray &path, const QByteArray &headers = QByteArray(),
              const QHostAddress &peer = QHostAddress::LocalHost) {
        return answerTo(*request(path, headers, peer));
    }

    /// Sends any request to a request handler. `text` is the request line and the headers, with the empty line.
    Reply send(const QByteArray &text) { return answerTo(*parsed(text, QHostAddress::LocalHost)); }

    /// Passes the same request to processRequest().
    ProcessedRequest process(OcelaHTTPExchange &exchange, const QByteArray &path) {
        const std::unique_ptr<HttpRequest> parsed = request(path);
        QString filePath = "unchanged";
        const QJsonDocument document = exchange.processRequest(QString::fromUtf8(parsed->getPath()), *parsed, filePath);
        return {withoutTime(document), filePath};
    }

    /// Returns the parsed request.
    std::unique_ptr<HttpRequest> request(const QByteArray &path, const QByteArray &headers = QByteArray(),
                                         const QHostAddress &peer = QHostAddress::LocalHost) const {
        return parsed("GET " + path + " HTTP/1.1\r\n" + headers + "\r\n", peer);
    }

private:
    Reply answerTo(HttpRequest &request) {
        RecordingOutput output;
        HttpResponse response(&output);
        handler_.service(request, response);
        const QByteArray sent = output.writes.join();
        const int end = sent.indexOf("\r\n\r\n") + 4;
        return {sent.left(end), sent.mid(end)};
    }
    std::unique_ptr<HttpRequest> parsed(const QByteArray &text, const QHostAddress &peer) const {
        auto request = std::make_unique<HttpRequest>(settings_);
        HttpInput input({text.constData(), static_cast<std::size_t>(text.size())}, peer);
        while (!input.isEmpty())
            request->readFromSocket(input);
        return request;
    }
    static QJsonObject withoutTime(const QJsonDocument &document) {
        QJsonObject object = document.object();
        object.remove("time");
        return object;
    }

    QTemporaryDir folder_;
    QSettings group_{folder_.filePath("settings.ini"), QSettings::IniFormat};
    HttpSettings settings_{&group_};
    OcelaHTTPRequestHandler handler_;
};
