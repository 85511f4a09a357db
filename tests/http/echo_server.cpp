// A server that tells its clients what it understood, as JSON; for trying the engine with other people's software.
//
// usage: echo_server [KEY-FILE CERTIFICATE-FILE]      with both: over TLS
//
// Listens on a free port, which it prints, and ends when its standard input does. An answer to a path that begins with
// /parts comes in parts.

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

template <typename Map>
QJsonObject lists(const Map &map) {
    QJsonObject object;
    for (auto entry = map.begin(); entry != map.end(); ++entry) {
        const QString name = QString::fromUtf8(entry.key());
        QJsonArray values = object.value(name).toArray();
        values.append(QString::fromUtf8(entry.value()));
        object.insert(name, values);
    }
    return object;
}

/// The parameters of file fields have the files' names; other parameters have no file.
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
        const QJsonObject object{{"method", QString::fromUtf8(request.getMethod())},
                                 {"path", QString::fromUtf8(request.getPath())},
                                 {"version", QString::fromUtf8(request.getVersion())},
                                 {"peer", request.getPeerAddress().toString()},
                                 {"headers", lists(request.getHeaderMap())},
                                 {"parameters", lists(request.getParameterMap())},
                                 {"cookies", lists(request.getCookieMap())},
                                 {"body", contents(request.getBody())},
                                 {"files", files(request)}};
        const QByteArray text = QJsonDocument(object).toJson(QJsonDocument::Compact);
        response.setHeader("Content-Type", "application/json");
        if (!request.getPath().startsWith("/parts"))
            return response.write(text, true);
        for (int begin = 0; begin < text.size(); begin += partBytes)
            response.write(text.mid(begin, partBytes));
    }
};

}  // namespace

int main(int argc, char *argv[]) {
    const QCoreApplication application(argc, argv);
    QSettings settings(QString(), QSettings::IniFormat);
    settings.setValue("host", "127.0.0.1");
    if (argc == 3) {
        settings.setValue("sslKeyFile", QString::fromLocal8Bit(argv[1]));
        settings.setValue("sslCertFile", QString::fromLocal8Bit(argv[2]));
    }
    Echo echo;
    const HttpListener listener(&settings, &echo);
    const QSocketNotifier input(fileno(stdin), QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, &application, &QCoreApplication::quit);
    std::printf("%d\n", listener.serverPort());
    std::fflush(stdout);
    return QCoreApplication::exec();
}
