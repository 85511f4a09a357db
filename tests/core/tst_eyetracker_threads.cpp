#include "support/fake_tracker.h"
#include "support/test_main.h"

#include <QFile>
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
    int records = 0;
    for (; records < 20; ++records) {
        tracker.startRecord(folder.filePath(QString("%1.csv").arg(records)));
        const qint64 before = tracker.getLastSample().timestamp;
        while (tracker.getLastSample().timestamp < before + 50)
            std::this_thread::yield();
        tracker.stopRecord();
    }
    running = false;
    device.join();

    for (int i = 0; i < records; ++i) {
        QFile file(folder.filePath(QString("%1.csv").arg(i)));
        QVERIFY(file.open(QIODevice::ReadOnly));
        qint64 expected = 0;
        for (const QByteArray &line : file.readAll().split('\n').mid(1)) {
            if (line.isEmpty())
                continue;
            const qint64 timestamp = line.left(line.indexOf(',')).toLongLong();
            QVERIFY2(expected == 0 || timestamp == expected, "a record must not miss a sample");
            expected = timestamp + 1;
        }
        QVERIFY2(expected > 0, "a record must hold samples");
    }
}

OCELA_TEST(TestEyetrackerThreads)
#include "tst_eyetracker_threads.moc"
