#include "core/eye_tracking_csv.h"
#include "support/fake_tracker.h"
#include "support/test_main.h"

#include <QTemporaryDir>
#include <QTest>
#include <algorithm>
#include <atomic>
#include <thread>
#include <vector>

/// Finds data races under ThreadSanitizer, and torn data without it.
class TestEyetrackerThreads : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void recordings_start_and_stop_while_a_device_delivers();
    void readers_get_every_sample_once_while_several_threads_deliver();
};

namespace {

constexpr int recordingCount = 20;
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

void TestEyetrackerThreads::recordings_start_and_stop_while_a_device_delivers() {
    const QTemporaryDir folder;
    FakeTracker tracker;
    std::atomic<bool> running{true};
    std::thread device([&] {
        for (qint64 timestamp = 1; running; ++timestamp)
            tracker.addSample({timestamp});
    });
    for (int i = 0; i < recordingCount; ++i) {
        tracker.startRecord(folder.filePath(QString("%1.csv").arg(i)));
        const qint64 before = tracker.getLastSample().timestamp;
        while (tracker.getLastSample().timestamp < before + 50)
            std::this_thread::yield();
        tracker.stopRecord();
    }
    running = false;
    device.join();

    for (int i = 0; i < recordingCount; ++i) {
        const EyeTrackingCSV record(folder.filePath(QString("%1.csv").arg(i)), true);
        QVERIFY2(record.rows().size() > 0, "the record file has no samples");
        qint64 expected = record.rows().at(0).at(0).toLongLong();
        for (std::size_t row = 0; row < record.rows().size(); ++row)
            QCOMPARE(record.rows().at(row).at(0).toLongLong(), expected++);
    }
}

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
