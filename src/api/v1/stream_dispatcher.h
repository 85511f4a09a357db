#pragma once

#include "api/v1/marker_log.h"
#include "api/v1/program_state.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace api_v1 {

/// Wakes the streams when there is something to send. Its thread waits for the trackers, so that a tracker never has to
/// wake more than one thread. While there is no stream, the thread sleeps.
///
/// All functions may be called from any thread.
class StreamDispatcher {
public:
    using Clock = std::chrono::steady_clock;

    /// The number of streams that may be open at the same time.
    static constexpr int maxStreams = 20;

    /// The newest sample, and the number of changes, that a stream has seen.
    struct Seen {
        quint64 samples = 0;
        quint64 changes = 0;  ///< of the state and the markers
    };

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

    /// Waits until there are samples, or changes, that are not in `seen`, or until `deadline`. Returns the newest
    /// positions.
    Seen waitForSamples(const Seen &seen, Clock::time_point deadline);
    /// Waits in the same way, but for changes only.
    Seen waitForChanges(const Seen &seen, Clock::time_point deadline);

private:
    [[nodiscard]] bool open();
    void close();
    void run();
    [[nodiscard]] bool waitForStreams();
    [[nodiscard]] Seen present() const;
    void wake(const Seen &seen);

    const PublishedState &state_;
    const MarkerLog &markers_;
    const std::shared_ptr<SampleSignal> signal_;

    mutable std::mutex mutex_;  ///< guards the fields below
    std::condition_variable streamsChanged_;
    std::condition_variable samplesChanged_;  ///< or the state or the markers
    std::condition_variable changesChanged_;
    Seen seen_;
    int streamCount_ = 0;
    bool stopping_ = false;

    std::thread thread_;
};

}  // namespace api_v1
