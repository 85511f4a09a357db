#pragma once

#include "streams/gaze_stream.h"

#include <QProcess>
#include <chrono>
#include <vector>

/// Receivers of the gaze stream with the real LSL library, which the variable OCELA_LSL_LIBRARY names.
namespace bench {

/// Returns the seconds of the machine's monotonic clock.
[[nodiscard]] inline double seconds(std::chrono::steady_clock::time_point time) {
    return std::chrono::duration<double>(time.time_since_epoch()).count();
}

struct ReceivedSample {
    double stamp = 0;     ///< the time stamp of the sample, in seconds of the monotonic clock
    double received = 0;  ///< when the receiver got the sample, in the same time
    gaze_stream::Values values{};

    [[nodiscard]] quint64 number() const { return static_cast<quint64>(values.back()); }
};

/// A receiver in a process of its own. GUI thread.
class LslReceiver {
public:
    enum class Kind {
        Reading,
        Idle,     ///< opens the stream, and never takes a sample
        Stopped,  ///< the process is stopped after it has opened the stream, so its connection gets full
    };

    /// Starts to look for the stream.
    explicit LslReceiver(Kind kind);
    ~LslReceiver();
    LslReceiver(const LslReceiver &) = delete;
    LslReceiver &operator=(const LslReceiver &) = delete;

    /// Waits until the receiver has opened the stream. Then stops the process if it is `Stopped`.
    void waitUntilOpen();
    /// Ends the receiver, after it has got no sample for half a second. Returns the samples in order; none unless it is
    /// `Reading`.
    [[nodiscard]] std::vector<ReceivedSample> finish();

private:
    const Kind kind_;
    QProcess process_;
};

/// The argument with which LslReceiver calls this program. The next argument is the kind.
constexpr char receiverArgument[] = "--receiver";
/// The main() of a receiver.
int runReceiver(LslReceiver::Kind kind);

}  // namespace bench
