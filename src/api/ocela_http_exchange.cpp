#include "api/ocela_http_exchange.h"

#include "api/confined_file.h"
#include "api/file_path_rules.h"
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

/// The limit of Windows. The limits of the other systems are lower.
constexpr int maxPathLength = 32767;

const QLatin1String fileRefused(
    "Only files in the folder http may be fetched. To allow others, turn on \"Serve any file of this computer\" in "
    "Ocela's settings, tab \"Access\".");
const QLatin1String recordRefused(
    "Recordings may be saved only in the records folder. To allow other folders, turn on \"Serve any file of this "
    "computer\" in Ocela's settings, tab \"Access\".");
const QLatin1String remoteRecordRefused("A recording needs the path of a file on this computer.");

constexpr int maxLoggedLength = 200;

std::atomic<OcelaHTTPExchange *> currentExchange{nullptr};

/// Settings in memory. QSettings writes a file even if the file name is empty, so this class prevents that.
class MemorySettings : public QSettings {
public:
    explicit MemorySettings(QObject *parent) : QSettings(QString(), IniFormat, parent) {}
    ~MemorySettings() override { clear(); }

protected:
    bool event(QEvent *event) override { return event->type() == QEvent::UpdateRequest || QSettings::event(event); }
};

/// Returns the addresses to listen on; empty for all interfaces.
QStringList hostsFor(const AccessRights &rights) {
    return rights.otherComputers ? QStringList() : QStringList{"127.0.0.1", "::1"};
}

/// Intended: the values that are read are not used.
QSettings *createListenerSettings(const QStringList &hosts) {
    auto *settings = new MemorySettings(qApp);
    (void)settings->value("host", "127.0.0.1");
    settings->setValue("host", hosts.join(' '));
    (void)settings->value("port", QString::number(OcelaHTTPExchange::port));
    settings->setValue("port", OcelaHTTPExchange::port);
    (void)settings->value("maxRequestSize", 5000000);
    settings->setValue("maxRequestSize", 5000000);
    return settings;
}

/// Returns the text after `prefix`, or an empty string if `path` does not start with it.
QString parameter(const QString &path, QLatin1String prefix) {
    return path.startsWith(prefix) ? path.mid(prefix.size()) : QString();
}

bool exists(const QString &fileName) {
    // File names have no NUL characters, and Qt logs a warning about them.
    return !fileName.contains(QChar(0)) && QFileInfo::exists(fileName);
}

}  // namespace

struct OcelaHTTPExchange::Endpoint {
    QLatin1String text;
    bool exact = false;  ///< otherwise any path that starts with the text matches
    ApiAnswer (OcelaHTTPExchange::*answer)(const QString &path) const = nullptr;

    [[nodiscard]] bool matches(const QString &path) const { return exact ? path == text : path.startsWith(text); }
};

// The first match is used.
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

OcelaHTTPExchange::OcelaHTTPExchange(QObject *parent, const AccessRights &rights) : QObject(parent) {
    access_.setRights(rights);
    currentExchange = this;
    // listen() is called directly on the GUI thread. It is queued if a request creates the exchange on another thread.
    moveToThread(qApp->thread());
    QMetaObject::invokeMethod(this, &OcelaHTTPExchange::listen);
}

void OcelaHTTPExchange::listen() {
    settings_ = createListenerSettings(hostsFor(access_.rights()));
    listener_ = std::make_unique<HttpListener>(settings_, std::make_shared<OcelaHTTPRequestHandler>());
}

void OcelaHTTPExchange::setAccessRights(const AccessRights &rights) {
    const bool changesHosts = rights.otherComputers != access_.rights().otherComputers;
    access_.setRights(rights);
    if (programControl_)
        programControl_->refresh();
    if (changesHosts && listener_)
        listener_->setHosts(hostsFor(rights));
}

QString OcelaHTTPExchange::listenProblem() const {
    if (!listener_ || listener_->isListening())
        return {};
    if (listener_->serverError() == QAbstractSocket::AddressInUseError)
        return tr("Port %1 is used by another program").arg(port);
    return tr("Port %1 cannot be used: %2").arg(QString::number(port), listener_->errorString());
}

OcelaHTTPExchange::~OcelaHTTPExchange() {
    // The connections' threads must not wait for this thread, which waits for them.
    if (programControl_)
        programControl_->close();
    programApi_.close();
    trackerCalls_->close();
    listener_.reset();
    delete settings_;
    OcelaHTTPExchange *self = this;
    currentExchange.compare_exchange_strong(self, nullptr);
}

void OcelaHTTPExchange::openProgramApi(const std::vector<EyetrackerInterface *> &trackers, Markers &markers,
                                       const QString &journalsFolder) {
    for (EyetrackerInterface *tracker : trackers)
        tracker->setSampleSignal(programApi_.signal());
    programControl_ = std::make_unique<api_v1::ProgramControl>(trackers, journalsFolder, programApi_.run(), access_,
                                                               programApi_.state());
    connect(programControl_.get(), &api_v1::ProgramControl::trackerWanted, this, &OcelaHTTPExchange::trackerWanted);
    programApi_.open(*programControl_, markers);
}

void OcelaHTTPExchange::setTracker(EyetrackerInterface *tracker) {
    trackerCalls_->select(tracker);
    if (programControl_)
        programControl_->setTracker(tracker);
}

OcelaHTTPExchange &OcelaHTTPExchange::instance() {
    static std::mutex mutex;
    if (OcelaHTTPExchange *existing = currentExchange)
        return *existing;
    const std::lock_guard<std::mutex> lock(mutex);
    if (!currentExchange) {
        auto *created = new OcelaHTTPExchange(nullptr);
        created->connectionHelper_ << connect(qApp, &QCoreApplication::aboutToQuit, created, &QObject::deleteLater);
    }
    return *currentExchange;
}

QJsonDocument OcelaHTTPExchange::processRequest(QString path, HttpRequest &request, QString &filePath) {
    Q_UNUSED(request)
    const ApiAnswer result = answer(std::move(path));
    const auto *file = std::get_if<FileAnswer>(&result);
    filePath = file ? file->path : QString();
    return api_answer::toDocument(result);
}

ApiAnswer OcelaHTTPExchange::answer(QString path) const {
    // The answer for a missing file contains the path twice.
    if (path.size() > maxPathLength)
        return ResultAnswer{false, {{"error", "The path is too long"}}};
    const auto *endpoint = std::find_if(std::begin(endpoints), std::end(endpoints),
                                        [&](const Endpoint &candidate) { return candidate.matches(path); });
    return endpoint == std::end(endpoints) ? plainFile(std::move(path)) : (this->*endpoint->answer)(path);
}

ApiAnswer OcelaHTTPExchange::hello(const QString & /*path*/) const {
    return ResultAnswer{true, {{"hello", "there"}}};
}

ApiAnswer OcelaHTTPExchange::startRecord(const QString &path) const {
    const QString recordPath = parameter(path, QLatin1String("/startrecord&path="));
    qCDebug(lcHttp) << "Record path" << recordPath.left(maxLoggedLength);
    if (!file_path_rules::namesLocalFile(recordPath))
        return ResultAnswer{false, {{"error", remoteRecordRefused}}};
    // The file system may hang, and this object may be destroyed meanwhile.
    const std::shared_ptr<TrackerCalls> calls = trackerCalls_;
    if (!recordPath.isEmpty() && !access_.mayRecordTo(recordPath))
        return ResultAnswer{false, {{"error", recordRefused}}};
    return ResultAnswer{calls->queue([recordPath](EyetrackerInterface &tracker) { tracker.startRecord(recordPath); })};
}

ApiAnswer OcelaHTTPExchange::stopRecord(const QString & /*path*/) const {
    return ResultAnswer{trackerCalls_->queue([](EyetrackerInterface &tracker) { tracker.stopRecord(); })};
}

ApiAnswer OcelaHTTPExchange::samples(const QString & /*path*/) const {
    EyetrackerInterface *tracker = trackerCalls_->selected();
    if (!tracker)
        return ResultAnswer{false};
    return SamplesAnswer{*tracker};
}

ApiAnswer OcelaHTTPExchange::lastSample(const QString & /*path*/) const {
    EyetrackerInterface *tracker = trackerCalls_->selected();
    if (!tracker)
        return ResultAnswer{false};
    return LastSampleAnswer{*tracker};
}

ApiAnswer OcelaHTTPExchange::calibrate(const QString &path) const {
    const QLatin1String prefix("/calibrate&screen=");
    // Screen numbers start at 1. Text that is not a number becomes 0, which is no screen. Negative numbers become 0,
    // too, so that the subtraction below cannot overflow.
    const int number = path.startsWith(prefix) ? std::max(0, parameter(path, prefix).toInt()) : 1;
    const auto calibrateScreen = [index = number - 1](EyetrackerInterface &tracker) { tracker.calibrateScreen(index); };
    return ResultAnswer{trackerCalls_->queue(calibrateScreen)};
}

ApiAnswer OcelaHTTPExchange::stopCalibration(const QString & /*path*/) const {
    return ResultAnswer{trackerCalls_->queue([](EyetrackerInterface &tracker) { tracker.stopCalibration(); })};
}

ApiAnswer OcelaHTTPExchange::status(const QString & /*path*/) const {
    // Intended: clients of this endpoint expect exactly this text.
    return ResultAnswer{true, {{"todo", "TODO: Fill in the state"}}};
}

ApiAnswer OcelaHTTPExchange::plainFile(QString path) const {
    const QLatin1String root("/ROOT/");
    if (path == QLatin1String("/"))
        path = QStringLiteral("/index.html");
    path.replace('|', '/');
    const QString fileName = path.startsWith(root) ? QString(path).remove(root) : fileRoot_ + path;
    if (!access_.rights().anyFile && !confined_file::isNamedInside(fileName, fileRoot_))
        return ResultAnswer{false, {{"error", fileRefused}}};
    if (file_path_rules::namesLocalFile(fileName) && exists(fileName))
        return FileAnswer{fileName};
    return ResultAnswer{false, {{"action", path}, {"error", "File " + fileName + "doesn't exist"}}};
}

std::optional<QString> OcelaHTTPExchange::fileConfinement() const {
    return access_.rights().anyFile ? std::nullopt : std::make_optional(fileRoot_);
}
