// A server that responds with a JSON description of each request. Used to test the engine with other software.
//
// usage: echo_server SETTINGS-FILE      an INI file with the settings of HttpListener
//
// Prints its port, and stops when its standard input is closed. The path /parts selects a response in
// parts, and /body a response with the request's body.

#include "http/http_listener.h"
#include "http/http_request.h"
#include "http/http_request_handler.h"
#include "http/http_response.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSettings>
#include <QSocketNotifier>
#include <QTemporaryFile>
#include <cstdio>

namespace {

constexpr int partBytes = 100;

QJsonObject contents(const QByteArray &bytes) {
    const QByteArray hash = QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex();
    return {{"size", bytes.size()}, {"sha256", QString::fromLatin1(hash)}};
}

QJsonObject parameters(const HttpRequest &request) {
    QJsonObject object;
    for (const QByteArray &name : request.getParameterMap().uniqueKeys()) {
        QJsonArray values;
        for (const QByteArray &value : request.getParameters(name))
            values.append(QString::fromUtf8(value));
        object.insert(QString::fromUtf8(name), values);
    }
    return object;
}

/// Returns the uploaded files by field name.
QJsonObject files(const HttpRequest &request) {
    QJsonObject object;
    for (const QByteArray &field : request.getParameterMap().uniqueKeys()) {
        if (QTemporaryFile *file = request.getUploadedFile(field))
            object.insert(QString::fromUtf8(field), contents(file->readAll()));
    }
    return object;
}

class Echo : public HttpRequestHandler {
public:
    void service(HttpRequest &request, HttpResponse &response) override {
        const QJsonObject object{{"path", QString::fromUtf8(request.getPath())},
                                 {"peer", request.getPeerAddress().toString()},
                                 {"parameters", parameters(request)},
                                 {"body", contents(request.getBody())},
                                 {"files", files(request)}};
        if (request.getPath() == "/body")
            return response.write(request.getBody(), true);
        const QByteArray text = QJsonDocument(object).toJson(QJsonDocument::Compact);
        response.setHeader("Content-Type", "application/json");
        if (request.getPath() != "/parts")
            return response.write(text, true);
        for (int begin = 0; begin < text.size(); begin += partBytes)
            response.write(text.mid(begin, partBytes));
    }
};

}  // namespace

int main(int argc, char *argv[]) {
    const QCoreApplication application(argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "usage: echo_server SETTINGS-FILE\n");
        return 2;
    }
    QSettings settings(QString::fromLocal8Bit(argv[1]), QSettings::IniFormat);
    const HttpListener listener(&settings, std::make_shared<Echo>());
    const QSocketNotifier input(fileno(stdin), QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, &application, &QCoreApplication::quit);
    std::printf("%d\n", listener.serverPort());
    std::fflush(stdout);
    return QCoreApplication::exec();
}
