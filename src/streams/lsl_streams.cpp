#include "streams/lsl_streams.h"

#include "core/sample_signal.h"
#include "streams/lsl_log.h"

#include <QGuiApplication>
#include <QScreen>
#include <utility>

namespace {

constexpr int checkIntervalMs = 1000;

/// Qt scales the size of a screen, but not its position.
std::vector<QRect> screensIn(EyetrackerInterface::PixelUnit unit) {
    std::vector<QRect> areas;
    for (const QScreen *screen : QGuiApplication::screens()) {
        const QRect area = screen->geometry();
        const bool isScaled = unit == EyetrackerInterface::PixelUnit::Device;
        areas.emplace_back(area.topLeft(), isScaled ? area.size() * screen->devicePixelRatio() : area.size());
    }
    return areas;
}

}  // namespace

LslStreams::LslStreams(std::shared_ptr<SampleSignal> signal, QObject *parent)
    : QObject(parent),
      worker_(std::make_shared<LslWorker>(std::move(signal), [this](const std::optional<LslProblem> &problem) {
          QMetaObject::invokeMethod(
              this, [this, problem] { setProblem(problem); }, Qt::QueuedConnection);
      })) {
    connect(&checkTimer_, &QTimer::timeout, this, &LslStreams::checkLibrary);
    for (const QScreen *screen : QGuiApplication::screens())
        watch(*screen);
    connect(qGuiApp, &QGuiApplication::screenRemoved, this, &LslStreams::updateScreens);
    connect(qGuiApp, &QGuiApplication::screenAdded, this, [this](const QScreen *screen) {
        watch(*screen);
        updateScreens();
    });
}

LslStreams::~LslStreams() {
    worker_->close();
}

void LslStreams::setOn(bool isOn) {
    isOn_ = isOn;
    worker_->setOn(isOn);
    if (isOn) {
        checkTimer_.start(checkIntervalMs);
        return;
    }
    checkTimer_.stop();
    isBlocked_ = false;
    setProblem({});
}

void LslStreams::setTracker(EyetrackerInterface *tracker) {
    tracker_ = tracker;
    worker_->setTracker(tracker, tracker ? screensIn(tracker->pixelUnit()) : std::vector<QRect>());
}

void LslStreams::watch(const Markers &markers) {
    // The worker may outlive this object, and markers are set on any thread.
    connect(
        &markers, &Markers::added, this, [worker = worker_](const Marker &marker) { worker->addMarker(marker); },
        Qt::DirectConnection);
}

QString LslStreams::problem() const {
    if (isBlocked_)
        return tr(
            "The LSL library does not respond, so the LSL streams send nothing. If this message stays, restart Ocela.");
    if (!problem_)
        return {};
    if (problem_->kind == LslProblem::Kind::Stream)
        return tr("LSL streams could not be opened. Other programs may use all of their ports.");
    const QString reason = problem_->libraryError ? problem_->libraryError->text() : QString();
    return tr("LSL streams need the library liblsl, which cannot be used: %1. Get it from "
              "https://github.com/sccn/liblsl/releases and copy it beside the program. Then turn the setting off and "
              "on again.")
        .arg(reason);
}

void LslStreams::setProblem(const std::optional<LslProblem> &problem) {
    // A report of the worker may arrive after the streams were turned off.
    problem_ = isOn_ ? problem : std::nullopt;
    Q_EMIT problemChanged();
}

void LslStreams::checkLibrary() {
    const bool isBlocked = worker_->isBlocked();
    if (std::exchange(isBlocked_, isBlocked) == isBlocked)
        return;
    if (isBlocked)
        qCWarning(lcLsl) << "The LSL library does not respond";
    Q_EMIT problemChanged();
}

void LslStreams::watch(const QScreen &screen) {
    connect(&screen, &QScreen::geometryChanged, this, &LslStreams::updateScreens);
}

void LslStreams::updateScreens() {
    if (tracker_)
        worker_->setScreens(screensIn(tracker_->pixelUnit()));
}
