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
    void records_start_and_stop_while_a_device_delivers();
};

namespace {

constexpr int records = 20;

EyeTrackingSample numbered(int number) {
    EyeTrackingSample sample;
    sample.timestamp = number;
    return sample;
}

}  // namespace

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
