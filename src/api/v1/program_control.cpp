#include "api/v1/program_control.h"

#include "api/access_policy.h"
#include "api/v1/screens_json.h"

#include <QCoreApplication>
#include <QDir>
#include <QGuiApplication>
#include <QJsonArray>
#include <algorithm>
#include <utility>

using namespace api_v1;

namespace {

/// Some parts of the state change without a signal, for example the reason why a tracker is not connected.
constexpr std::chrono::seconds refreshInterval(1);

constexpr int busyRetrySeconds = 5;

QString textOf(EyetrackerInterface::CalibrationResult result) {
    switch (result) {
        case EyetrackerInterface::CalibrationResult::Done:
            return "done";
        case EyetrackerInterface::CalibrationResult::Failed:
            return "failed";
        case EyetrackerInterface::CalibrationResult::Cancelled:
            return "cancelled";
        case EyetrackerInterface::CalibrationResult::Unknown:
            break;
    }
    return "unknown";
}

Reply noTracker() {
    return problem(409, "No tracker is selected. Select one first.");
}

QJsonValue textOrNull(const QString &text) {
    return text.isEmpty() ? QJsonValue() : QJsonValue(text);
}

}  // namespace

ProgramControl::ProgramControl(std::vector<EyetrackerInterface *> trackers, const QString &journalsFolder,
                               const ProgramRun &run, const AccessPolicy &access, PublishedState &published,
                               std::chrono::milliseconds callTimeout)
    : trackers_(std::move(trackers)),
      journalsFolder_(journalsFolder),
      run_(run),
      access_(access),
      published_(published),
      callTimeout_(callTimeout) {
    for (EyetrackerInterface *tracker : trackers_)
        watch(tracker);
    connect(&timer_, &QTimer::timeout, this, &ProgramControl::refresh);
    timer_.start(refreshInterval);
    refresh();
}

void ProgramControl::watch(EyetrackerInterface *tracker) {
    Calibration &calibration = calibrations_[tracker];
    const auto calibrationStarted = [this, &calibration] {
        calibration.isRequested = false;
        calibration.isRunning = true;
        refresh();
    };
    const auto calibrationFinished = [this, &calibration](Result result) {
        calibration = {false, false, result, std::chrono::steady_clock::now()};
        refresh();
    };
    const auto recordEnded = [this, tracker](const QString &path) {
        setLastRecording(*tracker, path);
        refresh();
    };
    connect(tracker, &EyetrackerInterface::calibrationStarted, this, calibrationStarted);
    connect(tracker, &EyetrackerInterface::calibrationFinished, this, calibrationFinished);
    connect(tracker, &EyetrackerInterface::recordStarted, this, &ProgramControl::refresh);
    connect(tracker, &EyetrackerInterface::recordStopped, this, recordEnded);
    connect(tracker, &EyetrackerInterface::unsavedRecordSaved, this, recordEnded);
    connect(tracker, &EyetrackerInterface::connectedChanged, this, &ProgramControl::refresh);
    connect(tracker, &EyetrackerInterface::connectionFailed, this, &ProgramControl::refresh);
}

void ProgramControl::setLastRecording(const EyetrackerInterface &tracker, const QString &savedPath) {
    const QString reason = tracker.unsavedProblem();
    const bool isSaved = !savedPath.isEmpty();
    const QString problem = reason.isEmpty() ? QStringLiteral("The recording was discarded.") : reason;
    const QString path = isSaved || reason.isEmpty() ? savedPath : tracker.unsavedPath();
    lastRecording_ = QJsonObject{{"path", textOrNull(path)},
                                 {"samples", static_cast<qint64>(tracker.finishedRecordLength().sampleCount)},
                                 {"saved", isSaved},
                                 {"error", isSaved ? QJsonValue() : QJsonValue(problem)}};
}

void ProgramControl::setTracker(EyetrackerInterface *tracker) {
    tracker_ = tracker;
    refresh();
}

void ProgramControl::refresh() {
    const std::shared_ptr<const ProgramState> current = published_.get();
    ProgramState next;
    next.json = describe();
    next.trackers = trackers_;
    next.tracker = tracker_;
    if (!trackers_.empty())
        next.recordsFolder = QDir::cleanPath(trackers_.front()->recordsFolder());
    if (current && current->json == next.json && current->tracker == next.tracker &&
        current->recordsFolder == next.recordsFolder)
        return;
    published_.publish(std::move(next));
}

QJsonObject ProgramControl::describe() const {
    QJsonArray names;
    QJsonArray recordings;
    for (const EyetrackerInterface *tracker : trackers_) {
        names.append(tracker->name());
        if (const auto recording = tracker->runningRecording())
            recordings.append(QJsonObject{{"tracker", tracker->name()}, {"path", recording->path}});
    }
    return {{"version", QCoreApplication::applicationVersion()},
            {"trackers", names},
            {"tracker", describeTracker()},
            {"calibration", describeCalibration()},
            {"recordings", recordings},
            {"lastRecording", lastRecording_.isUndefined() ? QJsonValue() : lastRecording_},
            {"screens", screensJson()},
            {"area", tracker_ ? areaJson(*tracker_) : QJsonValue()},
            {"access", describeAccess()}};
}

QJsonValue ProgramControl::describeTracker() const {
    if (!tracker_)
        return {};
    const bool isConnected = tracker_->isConnected();
    const QString reason = isConnected ? QString() : tracker_->connectionProblem();
    return QJsonObject{{"name", tracker_->name()}, {"connected", isConnected}, {"reason", textOrNull(reason)}};
}

QJsonObject ProgramControl::describeCalibration() const {
    if (!tracker_)
        return {{"running", false}, {"last", QJsonValue()}};
    const Calibration &calibration = calibrations_.at(tracker_);
    QJsonValue last;
    if (calibration.lastResult)
        last = QJsonObject{{"result", textOf(*calibration.lastResult)}, {"time", run_.timeMs(calibration.lastEnd)}};
    return {{"running", calibration.isRequested || calibration.isRunning}, {"last", last}};
}

QJsonObject ProgramControl::describeAccess() const {
    const AccessRights rights = access_.rights();
    return {
        {"otherComputers", rights.otherComputers}, {"foreignPages", rights.foreignPages}, {"anyFile", rights.anyFile}};
}

Reply ProgramControl::call(const std::function<Reply()> &function, std::chrono::milliseconds timeout) {
    Reply reply;
    if (calls_.run([&] { reply = function(); }, timeout))
        return reply;
    reply = problem(503, "Ocela is busy or closing. Nothing was changed. Try again later.");
    reply.headers.push_back({"Retry-After", QByteArray::number(busyRetrySeconds)});
    return reply;
}

Reply ProgramControl::selectTracker(const QString &name) {
    return call([&] {
        const auto hasName = [&](const EyetrackerInterface *tracker) { return tracker->name() == name; };
        const auto found = std::find_if(trackers_.begin(), trackers_.end(), hasName);
        if (found == trackers_.end())
            return problem(422, "There is no tracker of this name. The names are in \"trackers\" of the state.");
        if (*found != tracker_) {
            const int index = static_cast<int>(found - trackers_.begin());
            QMetaObject::invokeMethod(
                this, [this, index] { Q_EMIT trackerWanted(index); }, Qt::QueuedConnection);
        }
        return emptyReply(202);
    });
}

Reply ProgramControl::startRecording(const QString &path) {
    return call([&] { return startRecordingNow(path); });
}

Reply ProgramControl::startRecordingNow(const QString &path) {
    if (!tracker_)
        return noTracker();
    if (tracker_->isRecording())
        return problem(409, "The selected tracker is recording already. Stop that recording first.");
    tracker_->startRecord(path);
    const std::optional<RunningRecording> recording = tracker_->runningRecording();
    return jsonReply(201, {{"path", recording ? recording->path : path}});
}

Reply ProgramControl::stopRecording() {
    return call([this] { return stopRecordingNow(); }, saveTimeout);
}

Reply ProgramControl::stopRecordingNow() {
    if (!tracker_)
        return noTracker();
    QString savedPath;
    const QMetaObject::Connection saved = connect(tracker_, &EyetrackerInterface::recordStopped, this,
                                                  [&savedPath](const QString &path) { savedPath = path; });
    const bool wasRecording = tracker_->stopRecord();
    disconnect(saved);
    if (!wasRecording)
        return problem(409, "The selected tracker is not recording.");
    if (savedPath.isEmpty())
        return notSaved();
    const RecordLength length = tracker_->finishedRecordLength();
    return jsonReply(200, {{"path", savedPath},
                           {"samples", static_cast<qint64>(length.sampleCount)},
                           {"durationMs", static_cast<qint64>(length.duration.count())}});
}

Reply ProgramControl::notSaved() const {
    return problem(500,
                   QString("The recording could not be saved (%1). Its samples are in the memory of Ocela: use Retry "
                           "or Save as in its window. If Ocela crashes, they are also in the folder %2.")
                       .arg(tracker_->unsavedProblem(), QDir::toNativeSeparators(journalsFolder_)));
}

Reply ProgramControl::calibrate(int screen) {
    return call([&] { return calibrateSoon(screen); });
}

Reply ProgramControl::calibrateSoon(int screen) {
    const int screenCount = QGuiApplication::screens().size();
    if (screen < 1 || screen > screenCount)
        return problem(
            422, QString("There is no screen %1. Screens are numbered from 1 to %2.").arg(screen).arg(screenCount));
    if (!tracker_)
        return noTracker();
    if (!tracker_->isConnected())
        return problem(409, "The tracker is not connected.");
    Calibration &calibration = calibrations_.at(tracker_);
    if (calibration.isRequested || calibration.isRunning)
        return problem(409, "The tracker is being calibrated. Wait for the end, or cancel the calibration first.");
    calibration.isRequested = true;
    const auto begin = [this, tracker = tracker_, index = screen - 1, &calibration] {
        // Some trackers return only after the calibration.
        tracker->calibrateScreen(index);
        calibration.isRequested = false;
        refresh();
    };
    QMetaObject::invokeMethod(this, begin, Qt::QueuedConnection);
    refresh();
    return emptyReply(202);
}

Reply ProgramControl::stopCalibration() {
    return call([this] { return stopCalibrationSoon(); });
}

Reply ProgramControl::stopCalibrationSoon() {
    if (!tracker_)
        return noTracker();
    const Calibration &calibration = calibrations_.at(tracker_);
    if (!calibration.isRequested && !calibration.isRunning)
        return problem(409, "No calibration is running.");
    QMetaObject::invokeMethod(
        tracker_, [tracker = tracker_] { tracker->stopCalibration(); }, Qt::QueuedConnection);
    return emptyReply(202);
}
