#include "api/access_policy.h"
#include "api/v1/router.h"
#include "core/markers.h"
#include "fuzz/fuzz_support.h"
#include "http/http_request.h"
#include "http/http_response.h"
#include "http/http_settings.h"
#include "support/fake_tracker.h"
#include "support/recording_output.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSettings>
#include <QTemporaryDir>

using namespace api_v1;

namespace {

/// Accepts all commands and does nothing.
class FakeCommands : public Commands {
public:
    Reply selectTracker(const QString & /*name*/) override { return emptyReply(202); }
    Reply startRecording(const QString &path) override { return jsonReply(201, {{"path", path}}); }
    Reply stopRecording() override { return jsonReply(200, {}); }
    Reply calibrate(int screen) override {
        fuzz::require(screen >= 1, "an invalid screen");
        return emptyReply(202);
    }
    Reply stopCalibration() override { return emptyReply(202); }
};

/// The connection of a client that disconnects after the first part of a stream.
class FailingOutput : public RecordingOutput {
public:
    [[nodiscard]] bool isWritable() const override { return writes.isEmpty(); }
};

struct Api {
    Api() {
        router.state().publish({0, {}, {&tracker}, &tracker, folder.path(), {}});
        tracker.addSample({});
        router.open(commands, markers);
    }

    int argumentCount = 0;
    QCoreApplication application{argumentCount, nullptr};
    QTemporaryDir folder;
    FakeTracker tracker;
    Markers markers{nullptr};
    FakeCommands commands;
    AccessPolicy access;
    Router router{access};
    QSettings group{QString(), QSettings::IniFormat};
    HttpSettings settings{&group};
};

void check(const QByteArray &response) {
    const int end = response.indexOf("\r\n\r\n") + 4;
    const QByteArray head = response.left(end);
    const QByteArray body = response.mid(end);
    const int status = head.mid(int(qstrlen("HTTP/1.1 ")), 3).toInt();
    fuzz::require(head.startsWith("HTTP/1.1 ") && status >= 200 && status < 500, "an invalid status");
    if (head.contains("application/problem+json"))
        fuzz::require(QJsonDocument::fromJson(body).object()["status"].toInt() == status, "an invalid problem");
    if (head.contains("application/json"))
        fuzz::require(QJsonDocument::fromJson(body).isObject(), "invalid JSON");
    fuzz::require(status < 400 || head.contains("application/problem+json"), "an error without a problem");
}

}  // namespace

/// The input is a request. Its path is below the root of the API.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const std::string_view bytes = fuzz::Input(data, size).rest();
    static Api api;
    HttpRequest request(api.settings);
    HttpInput input(bytes);
    while (!input.isEmpty() && request.getStatus() < HttpRequest::complete)
        request.readFromSocket(input);
    if (request.getStatus() != HttpRequest::complete || !Router::hasPath(request.getPath()))
        return 0;
    FailingOutput output;
    HttpResponse response(&output);
    api.router.service(request, response);
    check(output.writes.value(0));
    return 0;
}
