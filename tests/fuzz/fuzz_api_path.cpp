#include "api/ocela_http_exchange.h"
#include "fuzz/fuzz_support.h"
#include "http/http_request.h"
#include "http/http_settings.h"
#include "support/fake_tracker.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QSettings>
#include <QThread>

namespace {

/// An exchange with a tracker whose thread never runs: what is asked of it, as writing files anywhere, is never done.
struct Api {
    Api() {
        tracker.addSample(EyeTrackingSample());
        tracker.moveToThread(&thread);
        exchange.setTracker(&tracker);
    }

    int argumentCount = 0;
    QCoreApplication application{argumentCount, nullptr};
    QThread thread;
    FakeTracker tracker;
    OcelaHTTPExchange exchange{nullptr};
    QSettings group{QString(), QSettings::IniFormat};
    HttpSettings settings{&group};
    HttpRequest request{settings};
};

QJsonObject withoutTime(const QJsonDocument &document) {
    QJsonObject object = document.object();
    fuzz::require(object.take("time").toString().size() == 23, "no time");
    return object;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const std::string_view bytes = fuzz::Input(data, size).rest();
    static Api api;
    const QString path = QString::fromUtf8(bytes.data(), static_cast<int>(bytes.size()));
    QString filePath = "left over";
    const QJsonObject answer = withoutTime(api.exchange.processRequest(path, api.request, filePath));

    fuzz::require(answer["result"].isBool(), "no result");
    fuzz::require(filePath.isEmpty() || QFileInfo::exists(filePath), "a file that is not there");
    QByteArray text;
    for (const QByteArray &piece : api.exchange.answer(path).toJson(api.exchange.sampleJson()))
        text += piece;
    const QJsonDocument parsed = QJsonDocument::fromJson(text);
    fuzz::require(parsed.toJson(QJsonDocument::Compact) == text, "the text is not as documents have it");
    // Calls that wait for the tracker come to an end between the two.
    fuzz::require(
        !answer["result"].toBool() || withoutTime(parsed) == answer || !withoutTime(parsed)["result"].toBool(),
        "another text");
    return 0;
}
