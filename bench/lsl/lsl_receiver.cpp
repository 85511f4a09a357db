#include "lsl/lsl_receiver.h"

#include "toolkit/platform/vendor_library.h"

#include <QCoreApplication>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <limits>
#include <poll.h>
#include <unistd.h>

using bench::LslReceiver;
using bench::ReceivedSample;

namespace {

constexpr int timeoutMs = 30'000;
constexpr double timeout_s = 30;

/// The receiving part of the LSL library.
class Inlet {
public:
    Inlet()
        : library_(
              qEnvironmentVariable("OCELA_LSL_LIBRARY"),
              {"lsl_resolve_byprop", "lsl_create_inlet", "lsl_open_stream", "lsl_pull_sample_d", "lsl_local_clock"}) {
        using Resolve =
            std::int32_t (*)(void **, std::uint32_t, const char *, const char *, std::int32_t, double timeout);
        using Create = void *(*)(void *, std::int32_t, std::int32_t, std::int32_t);
        using Open = void (*)(void *, double, std::int32_t *);
        if (!library_.load())
            qFatal("The LSL library cannot be loaded");
        void *info = nullptr;
        if (library_.function<Resolve>(0)(&info, 1, "name", "Ocela Gaze", 1, timeout_s) < 1)
            qFatal("No stream");
        constexpr std::int32_t bufferSeconds = 360;
        inlet_ = library_.function<Create>(1)(info, bufferSeconds, 0, 1);
        std::int32_t error = 0;
        library_.function<Open>(2)(inlet_, timeout_s, &error);
        if (error != 0)
            qFatal("The stream cannot be opened");
    }

    /// Waits for the next sample. Returns its time stamp in LSL's clock, or 0 after a timeout.
    [[nodiscard]] double pull(gaze_stream::Values &values, double wait_s) const {
        using Pull = double (*)(void *, double *, std::int32_t, double, std::int32_t *);
        std::int32_t error = 0;
        return library_.function<Pull>(3)(inlet_, values.data(), gaze_stream::channelCount, wait_s, &error);
    }

    /// Returns LSL's clock minus the monotonic clock, in seconds.
    [[nodiscard]] double clockOffset() const {
        double smallestDelay = std::numeric_limits<double>::infinity();
        double offset = 0;
        for (int i = 0; i < 1000; ++i) {
            const double before = now();
            const double lslTime = library_.function<double (*)()>(4)();
            const double delay = now() - before;
            if (delay >= smallestDelay)
                continue;
            smallestDelay = delay;
            offset = lslTime - before - delay / 2;
        }
        return offset;
    }

    [[nodiscard]] static double now() { return bench::seconds(std::chrono::steady_clock::now()); }

private:
    VendorLibrary library_;
    void *inlet_ = nullptr;
};

/// Returns whether the parent has closed the standard input.
bool isAskedToEnd(int waitMs) {
    pollfd input{STDIN_FILENO, POLLIN, 0};
    return ::poll(&input, 1, waitMs) > 0;
}

std::vector<ReceivedSample> readUntilAsked(const Inlet &inlet) {
    constexpr double wait_s = 0.5;
    std::vector<ReceivedSample> samples;
    for (bool isEnding = false;; isEnding = isEnding || isAskedToEnd(0)) {
        ReceivedSample sample;
        sample.stamp = inlet.pull(sample.values, wait_s);
        sample.received = Inlet::now();
        if (sample.stamp != 0)
            samples.push_back(sample);
        else if (isEnding)
            break;
    }
    const double offset = inlet.clockOffset();
    for (ReceivedSample &sample : samples)
        sample.stamp -= offset;
    return samples;
}

}  // namespace

LslReceiver::LslReceiver(Kind kind) : kind_(kind) {
    process_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process_.start(QCoreApplication::applicationFilePath(),
                   {receiverArgument, QString::number(static_cast<int>(kind))});
}

LslReceiver::~LslReceiver() {
    process_.kill();
    process_.waitForFinished();
}

void LslReceiver::waitUntilOpen() {
    if (!process_.waitForReadyRead(timeoutMs) || process_.readLine() != "open\n")
        qFatal("A receiver cannot open the stream");
    if (kind_ == Kind::Stopped)
        ::kill(static_cast<pid_t>(process_.processId()), SIGSTOP);
}

std::vector<ReceivedSample> LslReceiver::finish() {
    if (kind_ != Kind::Reading)
        return {};
    process_.closeWriteChannel();
    if (!process_.waitForFinished(timeoutMs) || process_.exitCode() != 0)
        qFatal("A receiver has failed");
    const QByteArray output = process_.readAllStandardOutput();
    std::vector<ReceivedSample> samples(static_cast<std::size_t>(output.size()) / sizeof(ReceivedSample));
    std::memcpy(samples.data(), output.constData(), samples.size() * sizeof(ReceivedSample));
    return samples;
}

int bench::runReceiver(LslReceiver::Kind kind) {
    const Inlet inlet;
    std::printf("open\n");
    std::fflush(stdout);
    if (kind != LslReceiver::Kind::Reading)
        return isAskedToEnd(-1) ? 0 : 1;
    const std::vector<ReceivedSample> samples = readUntilAsked(inlet);
    return std::fwrite(samples.data(), sizeof(ReceivedSample), samples.size(), stdout) == samples.size() ? 0 : 1;
}
