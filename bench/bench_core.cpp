// What a tracker pays for delivering one sample.

#include "core/eyetracker_interface.h"
#include "support/bare_tracker.h"
#include "support/rounds.h"
#include "support/typical_samples.h"

#include <QCoreApplication>
#include <QTemporaryDir>
#include <deque>
#include <mutex>

namespace {

constexpr std::size_t samplesPerRound = 20000;

/// Delivers samples one millisecond apart, so that a window of two seconds stays full at 2001 samples.
class Feed {
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

/// The least that a thread-safe window can cost.
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
    explicit Deliveries(QString recordPath) : recordPath_(std::move(recordPath)) {
        QObject::connect(
            &followed_, &EyetrackerInterface::newSample, &followed_,
            [this](const EyeTrackingSample &sample) { xSeen_ += sample.x_px; }, Qt::DirectConnection);
        for (EyetrackerInterface *tracker : {&alone_, &followed_})
            feed_.deliver(3000, [&](const EyeTrackingSample &sample) { tracker->addSample(sample); });
    }

    [[nodiscard]] std::vector<bench::Contender> contenders() {
        return {
            {"baseline: std::deque push and pop under std::mutex", samplesPerRound, [this] { feedBareWindow(); }, {}},
            delivery("addSample, not recording, no receiver", alone_, false),
            delivery("addSample, not recording, one direct receiver", followed_, false),
            delivery("addSample, recording, no receiver", alone_, true),
            delivery("addSample, recording, one direct receiver", followed_, true),
        };
    }

private:
    void feedBareWindow() {
        feed_.deliver(samplesPerRound, [this](const EyeTrackingSample &sample) { bareWindow_.add(sample); });
    }

    /// Each round of recording begins with an empty record, so that the growth of its memory counts.
    bench::Contender delivery(const char *name, EyetrackerInterface &tracker, bool recording) {
        const auto run = [this, &tracker] {
            feed_.deliver(samplesPerRound, [&](const EyeTrackingSample &sample) { tracker.addSample(sample); });
        };
        const auto reset = [this, &tracker, recording] {
            tracker.stopRecord();
            if (recording)
                tracker.startRecord(recordPath_);
        };
        return {name, samplesPerRound, run, reset};
    }

    const QString recordPath_;
    Feed feed_;
    BareWindow bareWindow_;
    BareTracker alone_;
    BareTracker followed_;
    qint64 xSeen_ = 0;
};

}  // namespace

int main(int argc, char *argv[]) {
    const QCoreApplication application(argc, argv);
    const QTemporaryDir folder;
    Deliveries deliveries(folder.filePath("record.csv"));
    bench::print("Delivering a sample at 1000 Hz with a full window of 2 s",
                 bench::interleave(deliveries.contenders(), bench::roundsFrom(argc, argv, 51)));
}
