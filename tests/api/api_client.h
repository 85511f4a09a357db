#pragma once

#include "api/ocela_http_request_handler.h"
#include "http/http_request.h"
#include "http/http_response.h"
#include "http/http_settings.h"
#include "support/recording_output.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QSettings>
#include <QTemporaryDir>

/// Asks the request handler without a connection in between. The path is sent as it is: escape what needs it.
class ApiClient {
public:
    struct Reply {
        QByteArray head;
        QByteArray body;

        [[nodiscard]] bool isDocument() const { return head.contains("Content-Type: text/json; charset=UTF-8\r\n"); }
        /// Without "time", which no test can know.
        [[nodiscard]] QJsonObject answer() const {
            QJsonObject object = QJsonDocument::fromJson(body).object();
            object.remove("time");
            return object;
        }
    };

    Reply get(const QByteArray &path) {
        HttpRequest request(settings_);
        const std::string text = "GET " + path.toStdString() + " HTTP/1.1\r\n\r\n";
        HttpInput input(text);
        while (!input.isEmpty())
            request.readFromSocket(input);
        RecordingOutput output;
        HttpResponse response(&output);
        handler_.service(request, response);
        const QByteArray sent = output.writes.value(0);
        const int end = sent.indexOf("\r\n\r\n") + 4;
        return {sent.left(end), sent.mid(end)};
    }

private:
    QTemporaryDir folder_;
    QSettings group_{folder_.filePath("settings.ini"), QSettings::IniFormat};
    HttpSettings settings_{&group_};
    OcelaHTTPRequestHandler handler_;
};
