#include "api/ocela_http_exchange.h"

#include "api/ocela_http_request_handler.h"
#include "core/eyetracker_interface.h"
#include "http/http_listener.h"
#include "http/http_log.h"

#include <QCoreApplication>
#include <QEvent>
#include <QFileInfo>
#include <QSettings>
#include <QStringList>
#include <algorithm>
#include <mutex>
#include <utility>

namespace {

constexpr int longestPath = 32767;

std::atomic<OcelaHTTPExchange *> exchange{nullptr};

/// In memory only: without a file name, which Qt would try to write to all the same.
class MemorySettings : public QSettings {
public:
    explicit MemorySettings(QObject *parent) : QSettings(QString(), IniFormat, parent) {}
    ~MemorySettings() override { clear(); }

protected:
    bool event(QEvent *event) override { return event->type() == QEvent::UpdateRequest || QSettings::event(event); }
};

/// "host" stays unset, so that the listener binds every interface.
QSettings *createListenerSettings() {
    auto *settings = new MemorySettings(qApp);
    (void)settings->value("host", "127.0.0.1");
    (void)settings->value("port", "3735");
    settings->setValue("port", 3735);
    (void)settings->value("maxRequestSize", 5000000);
    settings->setValue("maxRequestSize", 5000000);
    return settings;
}

/// The text behind `prefix`; empty if `path` does not start with that.
QString parameter(const QString &path, QLatin1String prefix) {
    return path.startsWith(prefix) ? path.mid(prefix.size()) : QString();
}

bool exists(const QString &fileName) {
    // Qt warns about such names, and no file has one.
    return !fileName.contains(QChar(0)) && QFileInfo::exists(fileName);
}

}  // namespace

struct OcelaHTTPExchange::Endpoint {
    QLatin1String text;
    bool exact = false;  ///< else any path that begins with the text
    ApiAnswer (OcelaHTTPExchange::*answer)(const QString &path) const = nullptr;

    [[nodiscard]] bool matches(const QString &path) const { return exact ? path == text : path.startsWith(text); }
};

// The first match counts.
const OcelaHTTPExchange::Endpoint OcelaHTTPExchange::endpoints[] = {
    {QLatin1String("/hello"), true, &OcelaHTTPExchange::hello},
    {QLatin1String("/startrecord"), false, &OcelaHTTPExchange::startRecord},
    {QLatin1String("/stoprecord"), false, &OcelaHTTPExchange::stopRecord},
    {QLatin1String("/lastsamples"), false, &OcelaHTTPExchange::samples},
    {QLatin1String("/lastsample"), false, &OcelaHTTPExchange::lastSample},
    {QLatin1String("/calibrate"), false, &OcelaHTTPExchange::calibrate},
    {QLatin1String("/stopcalibration"), false, &OcelaHTTPExchange::stopCalibration},
    {QLatin1String("/status"), false, &OcelaHTTPExchange::status},
};

OcelaHTTPExchange::OcelaHTTPExchange(QObject *parent) : QObject(parent) {
    exchange = this;
    // At once, unless a request makes the exchange: the connection's thread has no time for a listener.
    moveToThread(qApp->thread());
    QMetaObject::invokeMethod(this, &OcelaHTTPExchange::listen);
}

void OcelaHTTPExchange::listen() {
    requestHandler_ = std::make_unique<OcelaHTTPRequestHandler>();
    settings_ = createListenerSettings();
    listener_ = std::make_unique<HttpListener>(settings_, requestHandler_.get());
}

OcelaHTTPExchange::~OcelaHTTPExchange() {
    listener_.reset();
    delete settings_;
    OcelaHTTPExchange *self = this;
    exchange.compare_exchange_strong(self, nullptr);
}

OcelaHTTPExchange &OcelaHTTPExchange::instance() {
    static std::mutex mutex;
    if (OcelaHTTPExchange *existing = exchange)
        return *existing;
    const std::lock_guard<std::mutex> lock(mutex);
    if (!exchange) {
        auto *created = new OcelaHTTPExchange(nullptr);
        created->connectionHelper_ << connect(qApp, &QCoreApplication::aboutToQuit, created, &QObject::deleteLater);
    }
    return *exchange;
}

QJsonDocument OcelaHTTPExchange::processRequest(QString path, HttpRequest &request, QString &filePath) {
    Q_UNUSED(request)
    const ApiAnswer result = answer(std::move(path));
    filePath = result.filePath;
    return result.toDocument();
}

ApiAnswer OcelaHTTPExchange::answer(QString path) const {
    // No system has longer names, and answers that repeat one would multiply it.
    if (path.size() > longestPath)
        return {false, {{"error", "The path is too long"}}};
    const auto *endpoint = std::find_if(std::begin(endpoints), std::end(endpoints),
                                        [&](const Endpoint &candidate) { return candidate.matches(path); });
    return endpoint == std::end(endpoints) ? plainFile(std::move(path)) : (this->*endpoint->answer)(path);
}

ApiAnswer OcelaHTTPExchange::hello(const QString & /*path*/) const {
    return {true, {{"hello", "there"}}};
}

ApiAnswer OcelaHTTPExchange::startRecord(const QString &path) const {
    const QString recordPath = parameter(path, QLatin1String("/startrecord&path="));
    qCDebug(lcHttp) << "Record path" << recordPath;
    return queue([recordPath](EyetrackerInterface &tracker) { tracker.startRecord(recordPath); });
}

ApiAnswer OcelaHTTPExchange::stopRecord(const QString & /*path*/) const {
    return queue([](EyetrackerInterface &tracker) { tracker.stopRecord(); });
}

ApiAnswer OcelaHTTPExchange::samples(const QString & /*path*/) const {
    EyetrackerInterface *tracker = tracker_;
    return tracker ? ApiAnswer{true, {}, ApiAnswer::Samples::All, tracker} : ApiAnswer{false};
}

ApiAnswer OcelaHTTPExchange::lastSample(const QString & /*path*/) const {
    EyetrackerInterface *tracker = tracker_;
    return tracker ? ApiAnswer{true, {}, ApiAnswer::Samples::Last, tracker} : ApiAnswer{false};
}

ApiAnswer OcelaHTTPExchange::calibrate(const QString &path) const {
    const QLatin1String prefix("/calibrate&screen=");
    // Screens count from 1 here; what is no number is no screen. From 0 up, so that 1 can be taken from any of them.
    const int number = path.startsWith(prefix) ? std::max(0, parameter(path, prefix).toInt()) : 1;
    return queue([index = number - 1](EyetrackerInterface &tracker) { tracker.calibrateScreen(index); });
}

ApiAnswer OcelaHTTPExchange::stopCalibration(const QString & /*path*/) const {
    return queue([](EyetrackerInterface &tracker) { tracker.stopCalibration(); });
}

ApiAnswer OcelaHTTPExchange::status(const QString & /*path*/) const {
    // Intended: the endpoint has no other content.
    return {true, {{"todo", "TODO: Fill in the state"}}};
}

ApiAnswer OcelaHTTPExchange::plainFile(QString path) const {
    const QLatin1String root("/ROOT/");
    if (path == QLatin1String("/"))
        path = QStringLiteral("/index.html");
    path.replace('|', '/');
    const QString fileName = path.startsWith(root) ? QString(path).remove(root) : fileRoot_ + path;
    if (exists(fileName))
        return {true, {}, ApiAnswer::Samples::None, nullptr, fileName};
    return {false, {{"action", path}, {"error", "File " + fileName + "doesn't exist"}}};
}

template <typename Call>
ApiAnswer OcelaHTTPExchange::queue(Call call) const {
    EyetrackerInterface *tracker = tracker_;
    if (!tracker)
        return {false};
    if (pendingCalls_->fetch_add(1) >= mostPendingCalls) {
        pendingCalls_->fetch_sub(1);
        return {false};
    }
    const auto run = [call, tracker, pendingCalls = pendingCalls_] {
        pendingCalls->fetch_sub(1);
        call(*tracker);
    };
    return {QMetaObject::invokeMethod(tracker, run, Qt::AutoConnection)};
}
