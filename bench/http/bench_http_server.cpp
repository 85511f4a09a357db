// The control API without the rest of the program, for bench_http.
//
// usage: bench_http_server [--gazepoint]
// By default, it has a fake tracker of 250 Hz with a full sample window. With --gazepoint, it uses the GazePoint
// back-end and prints a line for each sample: the monotonic clock in nanoseconds, both pupil diameters in mm, and the
// gaze point of the left eye in percent.

#include "api/ocela_http_exchange.h"
#include "support/bare_tracker.h"
#include "support/typical_samples.h"
#include "trackers/gazepoint/gazepoint_tracker.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QTimer>
#include <chrono>
#include <cstdio>
#include <cstring>

namespace {

constexpr qint64 periodMs = 4;
constexpr qint64 windowSampleCount = EyetrackerInterface::sampleWindowMs / periodMs;

/// Delivers typical samples at a constant average rate. Samples that are late because of the load are delivered
/// together.
class SteadyTracker : public BareTracker {
public:
    SteadyTracker() {
        nextMs_ = QDateTime::currentMSecsSinceEpoch() - EyetrackerInterface::sampleWindowMs;
        timer_.setTimerType(Qt::PreciseTimer);
        connect(&timer_, &QTimer::timeout, this, &SteadyTracker::deliver);
    }

    bool start() override {
        deliver();
        timer_.start(periodMs);
        return true;
    }
    void stop() override { timer_.stop(); }

private:
    void deliver() {
        for (const qint64 now = QDateTime::currentMSecsSinceEpoch(); nextMs_ <= now; nextMs_ += periodMs) {
            EyeTrackingSample sample = samples_[count_++ % samples_.size()];
            sample.timestamp = nextMs_;
            addSample(sample);
        }
    }

    const std::vector<EyeTrackingSample> samples_ = bench::typicalSamples(windowSampleCount);
    std::size_t count_ = 0;
    qint64 nextMs_ = 0;
    QTimer timer_;
};

void print(const EyeTrackingSample &sample) {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    std::printf("%lld %.5f %.5f %.3f %.3f\n",
                static_cast<long long>(std::chrono::duration_cast<std::chrono::nanoseconds>(now).count()),
                static_cast<double>(sample.l_pupil_mm), static_cast<double>(sample.r_pupil_mm),
                static_cast<double>(sample.l_x), static_cast<double>(sample.l_y));
    std::fflush(stdout);
}

std::unique_ptr<EyetrackerInterface> makeTracker(bool gazePoint) {
    if (!gazePoint)
        return std::make_unique<SteadyTracker>();
    auto tracker = std::make_unique<GazePoint>(QString(), nullptr);
    QObject::connect(tracker.get(), &EyetrackerInterface::newSample, print);
    return tracker;
}

}  // namespace

int main(int argc, char *argv[]) {
    const QCoreApplication application(argc, argv);
    const auto tracker = makeTracker(argc > 1 && std::strcmp(argv[1], "--gazepoint") == 0);
    OcelaHTTPExchange exchange(nullptr);
    exchange.setTracker(tracker.get());
    tracker->start();
    return QCoreApplication::exec();
}
