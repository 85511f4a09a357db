// Measures the time to deliver one sample.
//
// The variable OCELA_LSL_LIBRARY names the library liblsl.so.2. Without it, the LSL streams are not measured.

#include "core/eyetracker_interface.h"
#include "core/recording_journal.h"
#include "core/sample_signal.h"
#include "streams/lsl_streams.h"
#include "support/bare_tracker.h"
#include "support/rounds.h"
#include "support/typical_samples.h"
#include "toolkit/platform/vendor_library.h"

#include <QGuiApplication>
#include <QTemporaryDir>
#include <array>
#include <deque>
#include <mutex>

namespace {

constexpr std::size_t samplesPerRound = 20000;

/// Passes on samples that are 1 ms apart, so that a window of 2 s always has 2001 samples.
class SampleSource {
public:
    template <typename Take>
    void deliver(std::size_t count, Take take) {
        for (std::size_t i = 0; i < count; ++i) {
            EyeTrackingSample &sample = samples_[i % samples_.size()];
            sample.timestamp = ++now_;
            take(sample);
        }
    }

private:
    std::vector<EyeTrackingSample> samples_ = bench::typicalSamples(1000);
    qint64 now_ = 0;
};

/// A minimal thread-safe sample window.
class BareWindow {
public:
    void add(const EyeTrackingSample &sample) {
        const std::lock_guard<std::mutex> lock(mutex_);
        while (!samples_.empty() && sample.timestamp - samples_.front().timestamp > EyetrackerInterface::sampleWindowMs)
            samples_.pop_front();
        samples_.push_back(sample);
    }

private:
    std::mutex mutex_;
    std::deque<EyeTrackingSample> samples_;
};

class Deliveries {
public:
    explicit Deliveries(const QString &folder) : recordFilePath_(folder + "/record.csv") {
        QObject::connect(
            &connected_, &EyetrackerInterface::newSample, &connected_,
            [this](const EyeTrackingSample &sample) { xSum_ += sample.x_px; }, Qt::DirectConnection);
        recording_journal::enable(journaled_, folder + "/journal", [] { return true; });
        if (hasLsl_)
            openStreams();
        for (EyetrackerInterface *tracker : trackers())
            source_.deliver(3000, [&](const EyeTrackingSample &sample) { tracker->addSample(sample); });
    }

    [[nodiscard]] std::vector<bench::Candidate> candidates() {
        std::vector<bench::Candidate> list{
            {"baseline: std::deque push and pop under std::mutex", samplesPerRound, [this] { fillBareWindow(); },
             [this] { journaled_.stopRecord(); }},
            delivery("addSample, not recording, no receiver", unconnected_, false),
            delivery("addSample, not recording, one direct receiver", connected_, false),
            delivery("addSample, recording, no receiver", unconnected_, true),
            delivery("addSample, recording, one direct receiver", connected_, true),
            delivery("addSample, recording with a journal, no receiver", journaled_, true),
        };
        if (hasLsl_) {
            list.push_back(delivery("addSample, not recording, LSL streams", streamed_, false));
            list.push_back(delivery("addSample, recording, LSL streams", streamed_, true));
        }
        return list;
    }

private:
    std::array<EyetrackerInterface *, 4> trackers() { return {&unconnected_, &connected_, &journaled_, &streamed_}; }

    void openStreams() {
        // The streams then find the library, also under the name that they look up.
        if (!VendorLibrary(qEnvironmentVariable("OCELA_LSL_LIBRARY"), {}).load())
            qFatal("The LSL library cannot be loaded");
        streamed_.setSampleSignal(signal_);
        streams_.setOn(true);
        streams_.setTracker(&streamed_);
    }

    void fillBareWindow() {
        source_.deliver(samplesPerRound, [this](const EyeTrackingSample &sample) { bareWindow_.add(sample); });
    }

    /// Each round starts a new recording, so that the growth of its memory is included.
    bench::Candidate delivery(const char *name, EyetrackerInterface &tracker, bool recording) {
        const auto run = [this, &tracker] {
            source_.deliver(samplesPerRound, [&](const EyeTrackingSample &sample) { tracker.addSample(sample); });
        };
        const auto reset = [this, &tracker, recording] {
            // Stops all recordings, because the journal of another candidate would use the processor during this round.
            for (EyetrackerInterface *any : trackers())
                any->stopRecord();
            if (recording)
                tracker.startRecord(recordFilePath_);
        };
        return {name, samplesPerRound, run, reset};
    }

    const QString recordFilePath_;
    const bool hasLsl_ = !qEnvironmentVariableIsEmpty("OCELA_LSL_LIBRARY");
    SampleSource source_;
    BareWindow bareWindow_;
    BareTracker unconnected_;
    BareTracker connected_;
    BareTracker journaled_;
    BareTracker streamed_;
    const std::shared_ptr<SampleSignal> signal_ = std::make_shared<SampleSignal>();
    LslStreams streams_{signal_};
    qint64 xSum_ = 0;
};

}  // namespace

int main(int argc, char *argv[]) {
    const QGuiApplication application(argc, argv);
    const QTemporaryDir folder;
    Deliveries deliveries(folder.path());
    bench::print("Delivering a sample at 1000 Hz with a full window of 2 s",
                 bench::interleave(deliveries.candidates(), bench::roundsFrom(argc, argv, 51)));
}
