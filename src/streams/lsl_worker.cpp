#include "streams/lsl_worker.h"

#include "core/sample_signal.h"
#include "streams/lsl_clock.h"
#include "streams/lsl_log.h"
#include "streams/lsl_outlet.h"

#include <algorithm>
#include <atomic>
#include <utility>

namespace {

std::atomic<int> leftThreads{0};

lsl::StreamDescription markerDescription() {
    lsl::StreamDescription result;
    result.name = "Ocela Markers";
    result.type = "Markers";
    result.sourceId = lslSourceId("markers");
    result.format = lsl::textFormat;
    return result;
}

}  // namespace

/// The streams between opening and closing. Lives on the worker's thread.
class LslWorker::Session {
public:
    explicit Session(const lsl::Functions &functions)
        : functions_(functions), clock_(functions), markers_(functions, markerDescription()) {}
    ~Session() { closeGaze(); }
    Session(const Session &) = delete;
    Session &operator=(const Session &) = delete;

    void send(const Work &work) {
        clock_.check();
        send(work.lastSamples);
        if (work.selection != selection_)
            closeGaze();
        selection_ = work.selection;
        if (work.source) {
            closeGaze();
            rightEyeExchanged_ = work.source->rightEyeExchanged;
            gaze_.emplace(functions_, gaze_stream::description(*work.source));
            qCInfo(lcLsl).noquote() << "Sending the gaze of" << work.source->tracker;
        }
        noteMissed(work.missedCount);
        send(work.samples);
        send(work.markers);
    }

    [[nodiscard]] bool isOpen() const { return markers_.isOpen() && (!gaze_ || gaze_->isOpen()); }

private:
    void send(const std::vector<NumberedSample> &samples) const {
        if (!gaze_ || !gaze_->isOpen())
            return;
        for (const NumberedSample &sample : samples) {
            using Sending = lsl::StreamOutlet::Sending;
            const Sending sending = &sample == &samples.back() ? Sending::Now : Sending::Together;
            gaze_->push(gaze_stream::valuesOf(sample, rightEyeExchanged_).data(), clock_.lslTime(sample.arrival),
                        sending);
        }
    }

    void send(const std::vector<Marker> &markers) const {
        if (!markers_.isOpen())
            return;
        for (const Marker &marker : markers)
            markers_.push(marker.text.toUtf8(), clock_.lslTime(marker.time));
    }

    void noteMissed(quint64 count) {
        if (count == 0)
            return;
        if (missedCount_ == 0)
            qCWarning(lcLsl) << "Samples or markers were not sent, because the library or the computer is too slow";
        missedCount_ += count;
    }

    void closeGaze() {
        if (missedCount_ > 0)
            qCWarning(lcLsl) << missedCount_ << "samples or markers were not sent";
        missedCount_ = 0;
        gaze_.reset();
    }

    const lsl::Functions &functions_;
    lsl::Clock clock_;
    lsl::StreamOutlet markers_;
    std::optional<lsl::StreamOutlet> gaze_;
    bool rightEyeExchanged_ = false;
    quint64 selection_ = 0;
    quint64 missedCount_ = 0;
};

LslWorker::LslWorker(std::shared_ptr<SampleSignal> signal, Report report)
    : signal_(std::move(signal)), report_(std::move(report)) {}

void LslWorker::setOn(bool isOn) {
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        if (isOn == isOn_ || isClosing_)
            return;
        isOn_ = isOn;
        hasFailed_ = false;
        if (tracker_)
            lastNumber_ = tracker_->lastNumberedSample().number;
        // The outlet of the tracker is opened again.
        ++selection_;
        source_.reset();
        lastSamples_.clear();
        markers_.clear();
    }
    if (isOn && !thread_.joinable())
        thread_ = std::thread([self = shared_from_this()] { self->run(); });
    changed_.notify_all();
    signal_->set();
}

void LslWorker::setTracker(EyetrackerInterface *tracker, const std::vector<QRect> &screens) {
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        if (tracker_ && isOn_ && takenSelection_ == selection_)
            lastSamples_ = tracker_->samplesSince(lastNumber_).samples;
        tracker_ = tracker;
        screens_ = screens;
        ++selection_;
        source_.reset();
        lastNumber_ = tracker ? tracker->lastNumberedSample().number : 0;
    }
    signal_->set();
}

void LslWorker::setScreens(const std::vector<QRect> &screens) {
    const std::lock_guard<std::mutex> lock(mutex_);
    screens_ = screens;
}

bool LslWorker::isBlocked() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return busySince_ && std::chrono::steady_clock::now() - *busySince_ > callTimeout;
}

void LslWorker::addMarker(const Marker &marker) {
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        if (!isOn_ || hasFailed_)
            return;
        if (markers_.size() == maxWaitingMarkers) {
            ++droppedMarkerCount_;
            return;
        }
        markers_.push_back(marker);
    }
    signal_->set();
}

void LslWorker::close() {
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        isClosing_ = true;
        tracker_ = nullptr;
        report_ = nullptr;
    }
    if (!thread_.joinable())
        return;
    changed_.notify_all();
    signal_->set();
    std::unique_lock<std::mutex> lock(mutex_);
    if (changed_.wait_for(lock, closeTimeout, [this] { return hasEnded_; })) {
        lock.unlock();
        thread_.join();
        return;
    }
    qCWarning(lcLsl) << "The LSL library does not respond";
    isLeftBehind_ = true;
    ++leftThreads;
    thread_.detach();
}

int LslWorker::leftThreadCount() {
    return leftThreads;
}

void LslWorker::run() {
    while (waitUntilOn()) {
        if (library_.load())
            stream();
        else
            reportLibrary();
    }
    const std::lock_guard<std::mutex> lock(mutex_);
    hasEnded_ = true;
    if (isLeftBehind_)
        --leftThreads;
    changed_.notify_all();
}

bool LslWorker::waitUntilOn() {
    std::unique_lock<std::mutex> lock(mutex_);
    busySince_.reset();
    changed_.wait(lock, [this] { return (isOn_ && !hasFailed_) || isClosing_; });
    busySince_ = std::chrono::steady_clock::now();
    return !isClosing_;
}

void LslWorker::stream() {
    Session session(library_.functions());
    std::optional<bool> wasOpen;
    for (;;) {
        // Read the count before the samples. Otherwise a sample that arrives in between would not wake the thread.
        const quint64 signalCount = signal_->count();
        const std::optional<Work> work = takeWork();
        if (!work)
            return;
        session.send(*work);
        const bool isOpen = session.isOpen();
        if (std::exchange(wasOpen, isOpen) != isOpen)
            report(isOpen ? std::nullopt : std::make_optional<LslProblem>());
        // Sleeps without waiting for the signal, because waking a waiting thread takes longer than the rest of
        // addSample().
        if (work->samples.empty())
            waitForSamples(signalCount);
        else
            std::this_thread::sleep_for(sendInterval);
    }
}

void LslWorker::waitForSamples(quint64 seenCount) {
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        busySince_.reset();
    }
    signal_->wait(seenCount);
}

std::optional<LslWorker::Work> LslWorker::takeWork() {
    const std::lock_guard<std::mutex> lock(mutex_);
    busySince_ = std::chrono::steady_clock::now();
    if (!isOn_ || isClosing_)
        return std::nullopt;
    Work work;
    takenSelection_ = selection_;
    work.selection = selection_;
    work.lastSamples = std::exchange(lastSamples_, {});
    work.markers = std::exchange(markers_, {});
    work.missedCount = std::exchange(droppedMarkerCount_, 0);
    if (!tracker_)
        return work;
    SamplesSince since = tracker_->samplesSince(lastNumber_);
    if (since.samples.empty())
        return work;
    lastNumber_ = since.samples.back().number;
    work.missedCount += since.missedCount.value_or(0);
    work.samples = std::move(since.samples);
    gaze_stream::Source current = source();
    if (!(source_ == current))
        work.source = source_ = std::move(current);
    return work;
}

gaze_stream::Source LslWorker::source() const {
    gaze_stream::Source source{tracker_->name(),      tracker_->manufacturer(),
                               tracker_->model(),     tracker_->exchangesRightEye(),
                               tracker_->pixelArea(), {}};
    const auto screen = std::find_if(screens_.begin(), screens_.end(),
                                     [&](const QRect &area) { return area.contains(source.area.center()); });
    if (screen != screens_.end())
        source.screen = {static_cast<int>(screen - screens_.begin()) + 1, screen->size()};
    return source;
}

void LslWorker::report(const std::optional<LslProblem> &problem) {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (report_)
        report_(problem);
}

void LslWorker::reportLibrary() {
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        hasFailed_ = isOn_;
    }
    report(LslProblem{LslProblem::Kind::Library, library_.error()});
}
