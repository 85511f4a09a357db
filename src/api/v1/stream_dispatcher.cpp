#include "api/v1/stream_dispatcher.h"

#include "core/eyetracker_interface.h"

#include <utility>

using namespace api_v1;

StreamDispatcher::Slot::Slot(StreamDispatcher &dispatcher) : dispatcher_(dispatcher), isGranted_(dispatcher.open()) {}

StreamDispatcher::Slot::~Slot() {
    if (isGranted_)
        dispatcher_.close();
}

StreamDispatcher::StreamDispatcher(const PublishedState &state, const MarkerLog &markers,
                                   std::shared_ptr<SampleSignal> signal)
    : state_(state), markers_(markers), signal_(std::move(signal)), thread_([this] { run(); }) {}

StreamDispatcher::~StreamDispatcher() {
    stop();
    thread_.join();
}

void StreamDispatcher::stop() {
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        stopping_ = true;
    }
    streamsChanged_.notify_all();
    samplesChanged_.notify_all();
    changesChanged_.notify_all();
    signal_->set();
}

bool StreamDispatcher::isStopping() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return stopping_;
}

bool StreamDispatcher::open() {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (streamCount_ == maxStreams)
        return false;
    ++streamCount_;
    streamsChanged_.notify_all();
    return true;
}

void StreamDispatcher::close() {
    const std::lock_guard<std::mutex> lock(mutex_);
    --streamCount_;
}

quint64 StreamDispatcher::waitForSamples(quint64 lastNumber, quint64 changeCount, Clock::time_point deadline) {
    std::unique_lock<std::mutex> lock(mutex_);
    samplesChanged_.wait_until(lock, deadline, [&] {
        return news_.newestNumber > lastNumber || news_.changeCount != changeCount || stopping_;
    });
    return news_.changeCount;
}

quint64 StreamDispatcher::waitForChanges(quint64 changeCount, Clock::time_point deadline) {
    std::unique_lock<std::mutex> lock(mutex_);
    changesChanged_.wait_until(lock, deadline, [&] { return news_.changeCount != changeCount || stopping_; });
    return news_.changeCount;
}

void StreamDispatcher::run() {
    while (waitForStreams()) {
        // Read before the rest, so that nothing that comes later is missed.
        const quint64 signalCount = signal_->count();
        wake(present());
        if (!isStopping())
            signal_->wait(signalCount);
    }
}

bool StreamDispatcher::waitForStreams() {
    std::unique_lock<std::mutex> lock(mutex_);
    streamsChanged_.wait(lock, [this] { return streamCount_ > 0 || stopping_; });
    return !stopping_;
}

StreamDispatcher::News StreamDispatcher::present() const {
    const std::shared_ptr<const ProgramState> state = state_.get();
    News news;
    if (state && state->tracker)
        news.newestNumber = state->tracker->lastNumberedSample().number;
    // Each of the two only increases, so the sum changes with each of them.
    news.changeCount = (state ? state->version : 0) + markers_.count();
    return news;
}

void StreamDispatcher::wake(const News &news) {
    const std::lock_guard<std::mutex> lock(mutex_);
    const bool hasChanges = news.changeCount != news_.changeCount;
    if (hasChanges)
        changesChanged_.notify_all();
    if (hasChanges || news.newestNumber != news_.newestNumber)
        samplesChanged_.notify_all();
    news_ = news;
}
