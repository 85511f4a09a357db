#pragma once

#include "core/eyetracker_interface.h"
#include "core/markers.h"
#include "core/numbered_sample.h"
#include "streams/gaze_stream.h"
#include "streams/lsl_library.h"

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

class SampleSignal;

/// Why streams cannot be received.
struct LslProblem {
    enum class Kind { Library, Stream };

    Kind kind = Kind::Stream;
    std::optional<VendorLibrary::Error> libraryError;  ///< why the library cannot be used
};

/// The thread that calls the library of the Lab Streaming Layer, and what it shares with the GUI thread.
///
/// A call of the library may block. The thread holds no lock meanwhile, and owns the object together with LslStreams.
/// Only close() waits for the thread, and the object can be used after a blocked thread was left behind.
class LslWorker : public std::enable_shared_from_this<LslWorker> {
public:
    using Report = std::function<void(const std::optional<LslProblem> &)>;

    /// The maximum duration of close().
    static constexpr std::chrono::seconds closeTimeout{2};
    /// Samples that arrive in this time are sent together. Sending each of 150 samples per second alone takes more than
    /// twice the CPU time, see bench/README.md.
    static constexpr std::chrono::milliseconds sendInterval{20};
    /// The library is blocked if its calls take longer.
    static constexpr std::chrono::seconds callTimeout{2};
    /// Further markers are dropped while the thread does not take them.
    static constexpr std::size_t maxWaitingMarkers = 10'000;

    /// `report` is called on the worker's thread when the problem changes, until close() returns. It must not block.
    /// All trackers must set `signal`.
    LslWorker(std::shared_ptr<SampleSignal> signal, Report report);

    /// Opens or closes the streams, soon. The first call with `true` starts the thread. GUI thread.
    void setOn(bool isOn);
    /// Sets the tracker whose samples are sent; null for none. It must exist until another one is set or until close().
    /// `screens` are the areas of the system's screens in the unit of the tracker's pixels. GUI thread.
    void setTracker(EyetrackerInterface *tracker, const std::vector<QRect> &screens);
    /// Sets the areas of the screens after they have changed. GUI thread.
    void setScreens(const std::vector<QRect> &screens);
    /// Sends a marker if the streams are on. Any thread.
    void addMarker(const Marker &marker);

    /// Returns whether a call of the library does not return. GUI thread.
    [[nodiscard]] bool isBlocked() const;

    /// Closes the streams and ends the thread. If a call of the library blocks longer than closeTimeout, leaves the
    /// thread behind. GUI thread.
    void close();

    /// Returns the number of threads that close() has left behind and that have not ended.
    [[nodiscard]] static int leftThreadCount();

private:
    /// The data that the thread sends next.
    struct Work {
        quint64 selection = 0;                    ///< changes with the tracker
        std::vector<NumberedSample> lastSamples;  ///< of the tracker that was selected before
        /// Set with the first samples of a tracker, and with the first samples after its screen or area has changed.
        std::optional<gaze_stream::Source> source;
        std::vector<NumberedSample> samples;
        quint64 missedCount = 0;  ///< samples and markers that are lost
        std::vector<Marker> markers;
    };
    class Session;

    void run();
    [[nodiscard]] bool waitUntilOn();
    void stream();
    [[nodiscard]] std::optional<Work> takeWork();
    [[nodiscard]] gaze_stream::Source source() const;
    void waitForSamples(quint64 seenCount);
    void report(const std::optional<LslProblem> &problem);
    void reportLibrary();

    const std::shared_ptr<SampleSignal> signal_;
    lsl::Library library_;  ///< used only on the thread
    std::thread thread_;    ///< used only on the GUI thread

    mutable std::mutex mutex_;  ///< guards the fields below
    std::condition_variable changed_;
    Report report_;
    bool isOn_ = false;
    bool hasFailed_ = false;  ///< the library cannot be used; tried again when the streams are turned on
    bool isClosing_ = false;
    bool hasEnded_ = false;
    bool isLeftBehind_ = false;
    EyetrackerInterface *tracker_ = nullptr;
    std::vector<QRect> screens_;
    quint64 selection_ = 0;
    quint64 takenSelection_ = 0;                 ///< of the last takeWork()
    quint64 lastNumber_ = 0;                     ///< of the last sample that was taken
    std::optional<gaze_stream::Source> source_;  ///< that takeWork() has returned for this selection
    std::optional<std::chrono::steady_clock::time_point> busySince_;  ///< empty while the thread waits
    std::vector<NumberedSample> lastSamples_;
    std::vector<Marker> markers_;
    quint64 droppedMarkerCount_ = 0;
};
