#include "support/fake_tracker.h"
#include "support/test_main.h"

#include <algorithm>
#include <atomic>
#include <thread>
#include <vector>

/// Finds data races under ThreadSanitizer, and torn data without it.
class TestEyetrackerThreads : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void readers_get_every_sample_once_while_several_threads_deliver();
};

namespace {

constexpr int devicesPerTracker = 2;
constexpr int samplesPerDevice = 2000;

/// Reads all samples of a tracker, like a client that follows it, until `stopping` is set, and once more after that.
SamplesSince follow(const EyetrackerInterface &tracker, const std::atomic<bool> &stopping) {
    SamplesSince all;
    bool isLast = false;
    while (!isLast) {
        isLast = stopping;
        const SamplesSince since = tracker.samplesSince(all.samples.empty() ? 0 : all.samples.back().number);
        all.samples.insert(all.samples.end(), since.samples.begin(), since.samples.end());
        *all.missedCount += since.missedCount.value();
    }
    return all;
}

bool isInOrder(const std::vector<NumberedSample> &samples) {
    const auto isDisorder = [](const NumberedSample &a, const NumberedSample &b) {
        return a.number >= b.number || a.arrival > b.arrival;
    };
    return std::adjacent_find(samples.begin(), samples.end(), isDisorder) == samples.end();
}

}  // namespace

void TestEyetrackerThreads::readers_get_every_sample_once_while_several_threads_deliver() {
    FakeTracker trackers[2];
    SamplesSince received[2];
    std::atomic<bool> stopping{false};
    std::thread readers[] = {std::thread([&] { received[0] = follow(trackers[0], stopping); }),
                             std::thread([&] { received[1] = follow(trackers[1], stopping); })};
    std::vector<std::thread> devices;
    for (FakeTracker &tracker : trackers) {
        for (int i = 0; i < devicesPerTracker; ++i) {
            devices.emplace_back([&tracker] {
                for (int k = 0; k < samplesPerDevice; ++k)
                    tracker.addSample(EyeTrackingSample());
            });
        }
    }
    for (std::thread &device : devices)
        device.join();

    stopping = true;
    for (std::thread &reader : readers)
        reader.join();

    std::vector<quint64> numbers;
    for (const SamplesSince &all : received) {
        QCOMPARE(all.samples.size(), std::size_t(devicesPerTracker * samplesPerDevice));
        QVERIFY(isInOrder(all.samples));
        QCOMPARE(all.missedCount.value(), quint64(0));
        for (const NumberedSample &entry : all.samples)
            numbers.push_back(entry.number);
    }
    std::sort(numbers.begin(), numbers.end());
    QVERIFY2(std::adjacent_find(numbers.begin(), numbers.end()) == numbers.end(), "a number was used twice");
}

OCELA_TEST(TestEyetrackerThreads)
#include "tst_eyetracker_threads.moc"
