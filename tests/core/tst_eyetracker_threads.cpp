#include "core/eye_tracking_csv.h"
#include "support/fake_tracker.h"
#include "support/test_main.h"

#include <QTemporaryDir>
#include <QTest>
#include <atomic>
#include <thread>

/// Meant for ThreadSanitizer first of all; the checks hold without it, too.
class TestEyetrackerThreads : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void readers_see_whole_samples_while_a_device_delivers();
    void records_start_and_stop_while_a_device_delivers();
};

namespace {

constexpr int deliveries = 20000;
constexpr int records = 20;

/// A sample whose fields all follow from its timestamp, so that a torn copy shows.
EyeTrackingSample numbered(int number) {
    EyeTrackingSample sample;
    sample.timestamp = number;
    sample.x = static_cast<float>(number);
    sample.r_pupil_y = number;
    return sample;
}

bool isWhole(const EyeTrackingSample &sample) {
    return sample.x == static_cast<float>(sample.timestamp) && sample.r_pupil_y == sample.timestamp;
}

bool isWholeWindow(const QList<EyeTrackingSample> &samples) {
    for (int i = 0; i < samples.size(); ++i) {
        if (!isWhole(samples[i]) || (i > 0 && samples[i].timestamp != samples[i - 1].timestamp + 1))
            return false;
    }
    return samples.size() <= EyetrackerInterface::sampleWindowMs + 1;
}

}  // namespace

void TestEyetrackerThreads::readers_see_whole_samples_while_a_device_delivers() {
    FakeTracker tracker;
    std::atomic<bool> running{true};
    std::atomic<int> torn{0};
    const auto read = [&] {
        while (running) {
            torn += !isWhole(tracker.getLastSample());
            torn += !isWholeWindow(tracker.getSamples());
            (void)tracker.isConnected();
            (void)tracker.percentToPixels(50, 50, true);
        }
    };
    std::thread first(read);
    std::thread second(read);
    std::thread device([&] {
        for (int number = 0; number < deliveries; ++number)
            tracker.addSample(numbered(number));
        running = false;
    });
    while (running) {
        tracker.setConnected(!tracker.isConnected());
        tracker.setCalibratedArea(0, 0, 1920, 1080);
    }
    device.join();
    first.join();
    second.join();
    QCOMPARE(torn.load(), 0);
}

void TestEyetrackerThreads::records_start_and_stop_while_a_device_delivers() {
    const QTemporaryDir folder;
    FakeTracker tracker;
    std::atomic<bool> running{true};
    std::thread device([&] {
        for (int number = 1; running; ++number)
            tracker.addSample(numbered(number));
    });
    for (int i = 0; i < records; ++i) {
        tracker.startRecord(folder.filePath(QString("%1.csv").arg(i)));
        const qint64 before = tracker.getLastSample().timestamp;
        while (tracker.getLastSample().timestamp < before + 50)
            std::this_thread::yield();
        tracker.stopRecord();
    }
    running = false;
    device.join();

    for (int i = 0; i < records; ++i) {
        const EyeTrackingCSV record(folder.filePath(QString("%1.csv").arg(i)), true);
        QVERIFY2(record.rows().size() > 0, "a record must hold samples");
        qint64 expected = record.rows().at(0).at(0).toLongLong();
        for (std::size_t row = 0; row < record.rows().size(); ++row)
            QCOMPARE(record.rows().at(row).at(0).toLongLong(), expected++);
    }
}

OCELA_TEST(TestEyetrackerThreads)
#include "tst_eyetracker_threads.moc"
