// Measures the LSL streams with the real library and receivers in processes of their own: the CPU time of the streams,
// the time of addSample(), samples that a receiver misses, and the time stamps of samples of a simulated tracker.
//
// The variable OCELA_LSL_LIBRARY names the library liblsl.so.2.

#include "core/sample_signal.h"
#include "lsl/lsl_receiver.h"
#include "streams/lsl_streams.h"
#include "support/bare_gazepoint_client.h"
#include "support/bare_tracker.h"
#include "support/rounds.h"
#include "support/typical_samples.h"
#include "toolkit/platform/vendor_library.h"
#include "trackers/gazepoint/gazepoint_record_reader.h"
#include "trackers/gazepoint/gazepoint_tracker.h"

#include <QEventLoop>
#include <QFile>
#include <QGuiApplication>
#include <QTemporaryDir>
#include <QTimer>
#include <algorithm>
#include <atomic>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <map>
#include <mutex>
#include <sys/resource.h>
#include <thread>
#include <tuple>

namespace {

using bench::LslReceiver;
using bench::ReceivedSample;
using Clock = std::chrono::steady_clock;
using Kind = LslReceiver::Kind;

constexpr int settleSeconds = 2;

void processEvents(int seconds) {
    QEventLoop loop;
    QTimer::singleShot(std::chrono::seconds(seconds), &loop, &QEventLoop::quit);
    loop.exec();
}

/// Returns the value that `percent` of the values do not exceed.
double percentile(std::vector<double> values, std::size_t percent) {
    std::sort(values.begin(), values.end());
    return values.at(values.size() * percent / 100);
}

/// Returns the CPU time of this process in seconds.
double cpuTime() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    const auto toSeconds = [](const timeval &time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
    };
    return toSeconds(usage.ru_utime) + toSeconds(usage.ru_stime);
}

/// Delivers samples at a fixed rate, on a thread of its own, and measures each call of addSample().
class Feeder {
public:
    Feeder(EyetrackerInterface &tracker, int rate) : tracker_(tracker), thread_([this, rate] { run(rate); }) {}
    ~Feeder() {
        isEnding_ = true;
        thread_.join();
    }
    Feeder(const Feeder &) = delete;
    Feeder &operator=(const Feeder &) = delete;

    void setMeasuring(bool isMeasuring) { isMeasuring_ = isMeasuring; }
    /// Returns the measured times of the calls.
    [[nodiscard]] std::vector<double> nanoseconds() {
        const std::lock_guard<std::mutex> lock(mutex_);
        return nanoseconds_;
    }

private:
    void run(int rate) {
        const auto interval = std::chrono::nanoseconds(std::chrono::seconds(1)) / rate;
        const std::vector<EyeTrackingSample> samples = bench::typicalSamples(1000);
        const auto start = Clock::now();
        for (int i = 0; !isEnding_; ++i) {
            std::this_thread::sleep_until(start + i * interval);
            EyeTrackingSample sample = samples[static_cast<std::size_t>(i) % samples.size()];
            sample.timestamp = static_cast<qint32>(i * interval / std::chrono::milliseconds(1));
            const auto before = Clock::now();
            tracker_.addSample(sample);
            const auto after = Clock::now();
            if (!isMeasuring_)
                continue;
            const std::lock_guard<std::mutex> lock(mutex_);
            nanoseconds_.push_back(std::chrono::duration<double, std::nano>(after - before).count());
        }
    }

    EyetrackerInterface &tracker_;
    std::atomic<bool> isMeasuring_{false};
    std::atomic<bool> isEnding_{false};
    std::mutex mutex_;
    std::vector<double> nanoseconds_;
    std::thread thread_;
};

/// A period with a fixed rate and fixed receivers.
struct Phase {
    const char *name;
    int rate;
    int seconds;
    bool isOn;
    std::vector<Kind> receivers;
};

struct Result {
    double cpuPercent = 0;     ///< of a core, all threads of this process
    double median_ns = 0;      ///< of addSample()
    double percentile_ns = 0;  ///< 99 % of the calls are faster
    double sampleCount = 0;
    double missedCount = 0;  ///< by the reading receiver that missed the most
};

/// Returns how many of the samples `first` to `last` were not received.
double missedBy(const std::vector<ReceivedSample> &received, quint64 first, quint64 last) {
    std::vector<quint64> numbers;
    for (const ReceivedSample &sample : received) {
        if (sample.number() >= first && sample.number() <= last)
            numbers.push_back(sample.number());
    }
    std::sort(numbers.begin(), numbers.end());
    const auto end = std::unique(numbers.begin(), numbers.end());
    return static_cast<double>(last - first + 1) - static_cast<double>(end - numbers.begin());
}

Result measure(const Phase &phase) {
    const auto signal = std::make_shared<SampleSignal>();
    BareTracker tracker;
    tracker.setSampleSignal(signal);
    LslStreams streams(signal);
    streams.setOn(phase.isOn);
    streams.setTracker(&tracker);
    Feeder feeder(tracker, phase.rate);
    std::vector<std::unique_ptr<LslReceiver>> receivers;
    for (const Kind kind : phase.receivers)
        receivers.push_back(std::make_unique<LslReceiver>(kind));
    for (const auto &receiver : receivers)
        receiver->waitUntilOpen();
    processEvents(settleSeconds);

    Result result;
    const quint64 first = tracker.lastNumberedSample().number;
    const auto begin = Clock::now();
    const double cpuBegin = cpuTime();
    feeder.setMeasuring(true);
    processEvents(phase.seconds);
    feeder.setMeasuring(false);
    result.cpuPercent = 100 * (cpuTime() - cpuBegin) / (bench::seconds(Clock::now()) - bench::seconds(begin));
    const quint64 last = tracker.lastNumberedSample().number;

    // The receivers still get samples, so that the last measured one is not missed for lack of time.
    processEvents(1);
    streams.setTracker(nullptr);
    for (const auto &receiver : receivers) {
        const std::vector<ReceivedSample> samples = receiver->finish();
        if (!samples.empty())
            result.missedCount = std::max(result.missedCount, missedBy(samples, first, last));
    }
    result.sampleCount = static_cast<double>(last - first + 1);
    result.median_ns = bench::median(feeder.nanoseconds());
    result.percentile_ns = percentile(feeder.nanoseconds(), 99);
    return result;
}

using Figures = std::vector<double>;  ///< one value per round

Figures figures(const std::vector<Result> &rounds, double Result::*figure) {
    Figures values(rounds.size());
    std::transform(rounds.begin(), rounds.end(), values.begin(), [&](const Result &round) { return round.*figure; });
    return values;
}

double sum(const Figures &values) {
    double total = 0;
    for (const double value : values)
        total += value;
    return total;
}

/// Measures the phases in interleaved rounds. The first phase is the baseline of the others.
void compare(const std::vector<Phase> &phases, int rounds) {
    std::vector<std::vector<Result>> results(phases.size());
    for (int round = 0; round < rounds; ++round) {
        for (std::size_t i = 0; i < phases.size(); ++i)
            results[i].push_back(measure(phases[i]));
    }
    std::printf("\n%d Hz (%d rounds)\n%-52s %7s %22s %9s %17s %9s %9s %9s\n", phases.front().rate, rounds, "", "CPU %",
                "minus first (min, max)", "median ns", "(fastest, slowest)", "x first", "99 % ns", "missed");
    const Figures firstCpu = figures(results.front(), &Result::cpuPercent);
    const Figures firstTime = figures(results.front(), &Result::median_ns);
    for (std::size_t i = 0; i < phases.size(); ++i) {
        const Figures cpu = figures(results[i], &Result::cpuPercent);
        Figures difference(cpu.size());
        std::transform(cpu.begin(), cpu.end(), firstCpu.begin(), difference.begin(), std::minus<>());
        const auto [least, greatest] = std::minmax_element(difference.begin(), difference.end());
        const Figures time = figures(results[i], &Result::median_ns);
        const auto [fastest, slowest] = std::minmax_element(time.begin(), time.end());
        std::printf("%-52s %7.2f %8.2f (%5.2f, %5.2f) %9.0f  (%6.0f, %6.0f) %9.2f %9.0f", phases[i].name,
                    bench::median(cpu), bench::median(difference), *least, *greatest, bench::median(time), *fastest,
                    *slowest, bench::medianRatio(time, firstTime),
                    bench::median(figures(results[i], &Result::percentile_ns)));
        if (!phases[i].receivers.empty())
            std::printf(" %.0f of %.0f", sum(figures(results[i], &Result::missedCount)),
                        sum(figures(results[i], &Result::sampleCount)));
        std::printf("\n");
    }
}

/// Identifies a record by its noisy values.
using Key = std::tuple<float, float, float, float>;

Key keyOf(const EyeTrackingSample &sample) {
    return {sample.l_x, sample.l_y, sample.r_x, sample.r_y};
}

/// The sample of a GazePoint tracker has the axes of the right eye exchanged.
Key keyOf(const gaze_stream::Values &values) {
    const auto percent = [&](std::size_t channel) { return static_cast<float>(100 * values[channel]); };
    return {percent(0), percent(1), percent(5), percent(4)};
}

/// A record of a simulated tracker. Times are seconds of the machine's monotonic clock.
struct Record {
    double sent = 0;     ///< TIME_TICK, when the simulator planned to send it
    double arrived = 0;  ///< at a bare client
};

/// Returns TIME_TICK in seconds, or 0 if it is missing.
double sendTime(std::string_view line) {
    constexpr double secondsPerTick = 1e-7;
    constexpr std::string_view prefix = "TIME_TICK=\"";
    const std::size_t begin = line.find(prefix);
    qint64 ticks = 0;
    if (begin != std::string_view::npos)
        std::from_chars(line.data() + begin + prefix.size(), line.data() + line.size(), ticks);
    return static_cast<double>(ticks) * secondsPerTick;
}

/// Prints the delays of the time stamps, of the receiver and of a bare client of the tracker, for the same records.
void compareTimes(const std::map<Key, Record> &records, const std::vector<ReceivedSample> &samples) {
    Figures stamps;
    Figures received;
    Figures baseline;
    Figures differences;
    for (const ReceivedSample &sample : samples) {
        const auto record = records.find(keyOf(sample.values));
        if (record == records.end())
            continue;
        const auto [sent, arrived] = record->second;
        baseline.push_back(1000 * (arrived - sent));
        stamps.push_back(1000 * (sample.stamp - sent));
        received.push_back(1000 * (sample.received - sent));
        differences.push_back(1000 * (sample.stamp - arrived));
    }
    if (baseline.size() < samples.size() / 2)
        qFatal("Only %zu of %zu samples have a record", baseline.size(), samples.size());
    const auto print = [](const char *name, const Figures &delays) {
        std::printf("%-58s %9.3f %9.3f\n", name, percentile(delays, 50), percentile(delays, 99));
    };
    print("baseline: arrival at a bare client of the tracker", baseline);
    print("LSL time stamp", stamps);
    print("arrival at the LSL receiver", received);
    print("LSL time stamp minus arrival at the bare client", differences);
}

void measureTimes(int rate, int seconds) {
    QProcess server;
    server.start(OCELA_BENCH_SIMULATOR, {"--port", "0", "--rate", QString::number(rate)});
    if (!server.waitForStarted() || !server.waitForReadyRead())
        qFatal("The simulator does not start");
    const quint16 port = server.readLine().split(':').last().trimmed().toUShort();

    const auto signal = std::make_shared<SampleSignal>();
    GazePoint tracker(QString(), nullptr, port);
    tracker.setSampleSignal(signal);
    LslStreams streams(signal);
    streams.setOn(true);
    streams.setTracker(&tracker);
    tracker.start();
    processEvents(1);
    LslReceiver receiver(Kind::Reading);
    receiver.waitUntilOpen();

    std::map<Key, Record> records;
    bench::BareGazepointClient client(port, true, [&](std::string_view line, Clock::time_point arrival) {
        if (gazepoint::kindOf(line) != gazepoint::Message::Record)
            return;
        const EyeTrackingSample sample = gazepoint::parseRecord(line, QSize(), 0);
        if (sample.l_valid && sample.r_valid)
            records[keyOf(sample)] = {sendTime(line), bench::seconds(arrival)};
    });
    processEvents(seconds);
    server.kill();
    server.waitForFinished();
    client.join();
    std::vector<ReceivedSample> samples = receiver.finish();

    const auto isBlink = [](const ReceivedSample &sample) {
        return std::isnan(sample.values[0]) || std::isnan(sample.values[4]);
    };
    samples.erase(std::remove_if(samples.begin(), samples.end(), isBlink), samples.end());
    std::printf("\nms after the simulator's send time, %d Hz, %zu samples\n%-58s %9s %9s\n", rate, samples.size(), "",
                "median", "99 %");
    compareTimes(records, samples);
}

/// Prints how long a receiver gets no samples when the stream is opened again.
void measureReopening(int rounds) {
    constexpr int rate = 150;
    constexpr int recoverySeconds = 15;
    const auto signal = std::make_shared<SampleSignal>();
    BareTracker tracker;
    tracker.setSampleSignal(signal);
    LslStreams streams(signal);
    streams.setOn(true);
    streams.setTracker(&tracker);
    const Feeder feeder(tracker, rate);
    LslReceiver receiver(Kind::Reading);
    receiver.waitUntilOpen();
    processEvents(settleSeconds);
    for (int width = 1; width <= rounds; ++width) {
        tracker.setCalibratedArea(0, 0, width, 1);
        processEvents(recoverySeconds);
    }
    streams.setTracker(nullptr);
    const std::vector<ReceivedSample> samples = receiver.finish();
    std::printf("\nSeconds without samples after the calibrated area has changed\n");
    for (std::size_t i = 1; i < samples.size(); ++i) {
        const auto missedCount = static_cast<double>(samples[i].number() - samples[i - 1].number() - 1);
        if (missedCount > 0)
            std::printf("%9.2f (%.0f samples)\n", samples[i].stamp - samples[i - 1].stamp, missedCount);
    }
}

/// Lets the streams find the library, also under the name that they look up.
bool loadLibrary() {
    VendorLibrary library(qEnvironmentVariable("OCELA_LSL_LIBRARY"), {});
    return library.load();
}

/// Lets receivers find the streams without multicast, which the loopback device does not have.
void confineToMachine(const QString &path) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) ||
        file.write("[multicast]\nResolveScope = machine\n[lab]\nKnownPeers = {127.0.0.1}\n[log]\nlevel = -2\n") < 0)
        qFatal("The configuration of the library cannot be written");
    qputenv("LSLAPICFG", path.toUtf8());
}

}  // namespace

int main(int argc, char *argv[]) {
    if (argc == 3 && std::strcmp(argv[1], bench::receiverArgument) == 0)
        return bench::runReceiver(static_cast<Kind>(std::atoi(argv[2])));
    const int rounds = bench::roundsFrom(argc, argv, 3);
    if (qEnvironmentVariableIsEmpty("OCELA_LSL_LIBRARY")) {
        std::printf("skipped: OCELA_LSL_LIBRARY does not name the LSL library liblsl.so.2\n");
        return 0;
    }
    const QGuiApplication application(argc, argv);
    const QTemporaryDir folder;
    confineToMachine(folder.filePath("lsl_api.cfg"));
    if (!loadLibrary())
        qFatal("The LSL library cannot be loaded");

    constexpr int shortSeconds = 20;
    constexpr int longSeconds = 60;
    compare({{"baseline: streams off", 150, shortSeconds, false, {}},
             {"streams without a receiver", 150, shortSeconds, true, {}},
             {"one receiver", 150, shortSeconds, true, {Kind::Reading}}},
            rounds);
    compare({{"baseline: streams off", 1000, shortSeconds, false, {}},
             {"one receiver", 1000, shortSeconds, true, {Kind::Reading}},
             {"two receivers", 1000, longSeconds, true, {Kind::Reading, Kind::Reading}},
             {"one reads, one never takes a sample, one is stopped",
              1000,
              longSeconds,
              true,
              {Kind::Reading, Kind::Idle, Kind::Stopped}}},
            rounds);
    for (const int rate : {150, 1000})
        measureTimes(rate, shortSeconds);
    measureReopening(rounds);
}
