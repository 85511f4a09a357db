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

/// An exchange with a tracker whose thread never runs, so that queued calls, which may write files, are never executed.
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
    QString filePath = "from an earlier request";
    const QJsonObject answer = withoutTime(api.exchange.processRequest(path, api.request, filePath));

    fuzz::require(answer["result"].isBool(), "no result");
    fuzz::require(filePath.isEmpty() || QFileInfo::exists(filePath), "a file that does not exist");
    QByteArray text;
    for (const QByteArray &piece : api_answer::toJson(api.exchange.answer(path), *api.exchange.sampleJson()))
        text += piece;
    const QJsonDocument parsed = QJsonDocument::fromJson(text);
    fuzz::require(parsed.toJson(QJsonDocument::Compact) == text, "the text differs from that of QJsonDocument");
    // The text may be an error, because the queue of calls to the tracker can be full by the second request.
    fuzz::require(
        !answer["result"].toBool() || withoutTime(parsed) == answer || !withoutTime(parsed)["result"].toBool(),
        "text and document differ");
    return 0;
}
