#include "core/eye_tracking_csv.h"
#include "support/fake_tracker.h"
#include "support/test_main.h"

#include <QRegularExpression>
#include <QTemporaryDir>
#include <cstdlib>
#include <limits>
#include <new>

namespace {

constexpr int unlimited = std::numeric_limits<int>::max();
constexpr std::size_t largeBytes = 1 << 20;

/// The number of allocations that succeed in this thread. Freeing a large block ends the shortage.
thread_local int remainingAllocations = unlimited;

}  // namespace

void *operator new(std::size_t size) {
    if (remainingAllocations != unlimited && remainingAllocations-- <= 0)
        throw std::bad_alloc();
    if (void *block = std::malloc(size))
        return block;
    throw std::bad_alloc();
}

void operator delete(void *block) noexcept {
    std::free(block);
}

void operator delete(void *block, std::size_t size) noexcept {
    if (size >= largeBytes)
        remainingAllocations = unlimited;
    std::free(block);
}

/// A separate program, because it replaces operator new.
class TestOutOfMemory : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void recording_keeps_its_complete_rows_and_can_be_saved();
    void incomplete_row_is_removed_from_a_table();
};

void TestOutOfMemory::recording_keeps_its_complete_rows_and_can_be_saved() {
    const QTemporaryDir folder;
    const QString path = folder.filePath("r.csv");
    // Memory runs out at each of the first allocations, so also within a row.
    for (int allocations = 0; allocations < 30; ++allocations) {
        FakeTracker tracker;
        tracker.startRecord(path);
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^Out of memory: .*r\\.csv gets no samples after"));
        qint64 count = 0;
        remainingAllocations = allocations;
        while (remainingAllocations != unlimited)
            tracker.addSample({++count});
        tracker.addSample({++count});
        QVERIFY(tracker.isRecording());
        QVERIFY(tracker.stopRecord());

        const EyeTrackingCSV saved(path, true);
        const std::size_t rowCount = saved.rows().size();
        QVERIFY(static_cast<qint64>(rowCount) < count);
        for (std::size_t row = 0; row < rowCount; ++row) {
            QCOMPARE(saved.rows().at(row).size(), 23);
            QCOMPARE(saved.rows().at(row).at(0).toLongLong(), static_cast<qint64>(row) + 1);
        }
    }
}

void TestOutOfMemory::incomplete_row_is_removed_from_a_table() {
    NumericRows rows;
    const std::vector<NumericCell> cells(100, NumericCell(1));
    for (int allocations = 0; allocations < 10; ++allocations) {
        remainingAllocations = allocations;
        try {
            while (true)
                rows.append(cells);
        } catch (const std::bad_alloc &) {
            remainingAllocations = unlimited;
        }
        rows.append({2});
        QCOMPARE(rows.at(rows.size() - 1), QVariantList{2});
    }
}

OCELA_TEST(TestOutOfMemory)
#include "tst_out_of_memory_linux.moc"
