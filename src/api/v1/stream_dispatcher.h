#pragma once

#include "api/v1/marker_log.h"
#include "api/v1/program_state.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace api_v1 {

/// Wakes the streams when there is something to send. Its thread waits for the trackers, so that a tracker does
/// not have to wake each stream. While there is no stream, the thread sleeps.
///
/// All functions may be called from any thread.
class StreamDispatcher {
public:
    using Clock = std::chrono::steady_clock;

    /// The number of streams that may be open at the same time.
    static constexpr int maxStreams = 20;

    /// An open stream, for the lifetime of the object.
    class Slot {
    public:
        explicit Slot(StreamDispatcher &dispatcher);
        ~Slot();
        Slot(const Slot &) = delete;
        Slot &operator=(const Slot &) = delete;

        /// Returns false if there are too many streams already.
        [[nodiscard]] bool isGranted() const { return isGranted_; }

    private:
        StreamDispatcher &dispatcher_;
        const bool isGranted_;
    };

    /// The references must outlive the object.
    StreamDispatcher(const PublishedState &state, const MarkerLog &markers, std::shared_ptr<SampleSignal> signal);
    ~StreamDispatcher();
    StreamDispatcher(const StreamDispatcher &) = delete;
    StreamDispatcher &operator=(const StreamDispatcher &) = delete;

    /// Ends the thread, and tells all streams to end.
    void stop();
    [[nodiscard]] bool isStopping() const;

    /// Waits until the selected tracker has a sample with a number above `lastNumber`, or until the number of changes
    /// of the state and the markers is not `changeCount`, or until `deadline`. Returns the number of changes.
    [[nodiscard]] quint64 waitForSamples(quint64 lastNumber, quint64 changeCount, Clock::time_point deadline);
    /// Waits in the same way, but for changes only.
    [[nodiscard]] quint64 waitForChanges(quint64 changeCount, Clock::time_point deadline);

private:
    /// What the streams wait for.
    struct News {
        quint64 newestNumber = 0;  ///< of the selected tracker
        quint64 changeCount = 0;
    };

    [[nodiscard]] bool open();
    void close();
    void run();
    [[nodiscard]] bool waitForStreams();
    [[nodiscard]] News present() const;
    void wake(const News &news);

    const PublishedState &state_;
    const MarkerLog &markers_;
    const std::shared_ptr<SampleSignal> signal_;

    mutable std::mutex mutex_;  ///< guards the fields below
    std::condition_variable streamsChanged_;
    std::condition_variable samplesChanged_;  ///< or the state or the markers
    std::condition_variable changesChanged_;
    News news_;
    int streamCount_ = 0;
    bool stopping_ = false;

    std::thread thread_;
};

}  // namespace api_v1
