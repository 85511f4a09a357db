#pragma once

#include "core/guarded.h"
#include "core/markers.h"
#include "core/sample_signal.h"

#include <deque>
#include <functional>
#include <memory>
#include <vector>

namespace api_v1 {

/// The newest markers, from which the streams read. Any thread.
class MarkerLog {
public:
    /// A stream that falls behind by more markers is told how many it missed.
    static constexpr std::size_t maxMarkers = 1000;

    struct Since {
        std::vector<Marker> markers;
        quint64 next = 0;  ///< to be passed to the next call of since()
        quint64 missedCount = 0;
    };

    explicit MarkerLog(std::shared_ptr<SampleSignal> signal) : signal_(std::move(signal)) {}

    /// Adds a marker. `newestNumber` returns the newest number of all trackers, which may be higher than the marker's
    /// number. It is called under the lock, so that positions never decrease.
    void add(const Marker &marker, const std::function<quint64()> &newestNumber);

    /// Returns the count of all markers so far, which is the position of the next one.
    [[nodiscard]] quint64 count() const;
    /// Returns the markers from the position `first` on.
    [[nodiscard]] Since since(quint64 first) const;
    /// Returns the position of the first marker that a client may not have received, if it has received the samples up
    /// to `number`. A marker that was set at the same time as that sample may be sent to the client twice.
    [[nodiscard]] quint64 firstAfter(quint64 number) const;

private:
    struct Entry {
        Marker marker;
        quint64 newestNumber = 0;  ///< when it was added
    };
    struct Log {
        quint64 droppedCount = 0;
        std::deque<Entry> entries;
    };

    const std::shared_ptr<SampleSignal> signal_;
    Guarded<Log> log_;
};

}  // namespace api_v1
