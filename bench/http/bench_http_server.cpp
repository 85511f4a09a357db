// The control API without the rest of the program: what bench_http measures.
//
// usage: bench_http_server                the tracker is a made-up one of 250 Hz, its window always full
//        bench_http_server --gazepoint    the real back-end; prints a line for each sample: the monotonic clock's
//                                         nanoseconds, both pupils in mm and the left eye's point in percent

#include "api/ocela_http_exchange.h"
#include "support/typical_samples.h"
#include "trackers/gazepoint/gaze_point.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QTimer>
#include <chrono>
#include <cstdio>
#include <cstring>

namespace {

constexpr qint64 periodMs = 4;
constexpr qint64 windowSamples = EyetrackerInterface::sampleWindowMs / periodMs;

/// Delivers typical samples at an even rate whatever the load: those that are late come together.
class SteadyTracker : public EyetrackerInterface {
public:
    SteadyTracker() : EyetrackerInterface(QString(), nullptr), samples_(bench::typicalSamples(windowSamples)) {
        nextMs_ = QDateTime::currentMSecsSinceEpoch() - EyetrackerInterface::sampleWindowMs;
        timer_.setTimerType(Qt::PreciseTimer);
        connect(&timer_, &QTimer::timeout, this, &SteadyTracker::deliver);
    }

    [[nodiscard]] QString name() const override { return QStringLiteral("steady"); }
    [[nodiscard]] VTSettings *settings() override { return nullptr; }
    [[nodiscard]] QWidget *createViewWidget() override { return nullptr; }

    bool start() override {
        deliver();
        timer_.start(periodMs);
        return true;
    }
    void stop() override { timer_.stop(); }
    void calibrate(QRect /*area*/) override {}
    void stopCalibration() override {}

private:
    void deliver() {
        for (const qint64 now = QDateTime::currentMSecsSinceEpoch(); nextMs_ <= now; nextMs_ += periodMs) {
            EyeTrackingSample sample = samples_[count_++ % samples_.size()];
            sample.timestamp = nextMs_;
            addSample(sample);
        }
    }

    const std::vector<EyeTrackingSample> samples_;
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
