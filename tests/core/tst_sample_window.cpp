#include "core/sample_window.h"
#include "support/test_main.h"

#include <limits>

class TestSampleWindow : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void holds_two_seconds_data();
    void holds_two_seconds();
    void list_is_current_after_every_sample();
    void samples_since_a_number_data();
    void samples_since_a_number();
    void missed_samples_are_counted_per_window();
    void counts_without_history_are_unknown();
    void arrival_never_decreases();
};

using Stamps = QList<qint64>;

namespace {

std::chrono::steady_clock::time_point arrivalAt(qint64 ms) {
    return std::chrono::steady_clock::time_point(std::chrono::milliseconds(ms));
}

/// Adds a sample that arrives at its timestamp, and returns its number.
quint64 add(SampleWindow &window, qint64 timestamp) {
    (void)window.add({timestamp}, arrivalAt(timestamp));
    return window.last().number;
}

Stamps stampsOf(const QList<EyeTrackingSample> &samples) {
    Stamps stamps;
    for (const EyeTrackingSample &sample : samples)
        stamps << sample.timestamp;
    return stamps;
}

}  // namespace

void TestSampleWindow::holds_two_seconds_data() {
    constexpr auto min = std::numeric_limits<qint64>::min();
    constexpr auto max = std::numeric_limits<qint64>::max();
    dataColumns<Stamps, qint64, Stamps>("stamps", "arrivalIntervalMs", "kept");
    const auto row = [](const char *name, const Stamps &stamps, qint64 arrivalIntervalMs, const Stamps &kept) {
        QTest::newRow(name) << stamps << arrivalIntervalMs << kept;
    };
    row("exactly two seconds old", {0, 1000, 2000}, 0, {0, 1000, 2000});
    row("older than two seconds", {0, 1000, 2000, 2001}, 0, {1000, 2000, 2001});
    row("clock set back, same arrival", {5000, 6000, 10}, 0, {5000, 6000, 10});
    row("clock set back", {9000, 10000, 10, 20, 30}, 1000, {10, 20, 30});
    row("several samples become too old at once", {0, 1, 2, 3000}, 0, {3000});
    row("same timestamp, exactly two seconds", {0, 0, 0, 0, 0}, 1000, {0, 0, 0});
    row("same timestamp, older than two seconds", {0, 0, 0, 0, 0}, 1001, {0, 0});
    row("slow clock", {0, 1, 2, 3, 4}, 1000, {0, 1, 2, 3, 4});
    row("difference beyond the integer range", {min, max}, 0, {min, max});
}

void TestSampleWindow::holds_two_seconds() {
    QFETCH(const Stamps, stamps);
    QFETCH(const qint64, arrivalIntervalMs);
    SampleWindow window(2000);
    for (int i = 0; i < stamps.size(); ++i)
        (void)window.add({stamps[i]}, arrivalAt(arrivalIntervalMs * i));
    QTEST(stampsOf(window.samples()), "kept");
    QCOMPARE(window.last().sample.timestamp, stamps.last());
}

void TestSampleWindow::list_is_current_after_every_sample() {
    SampleWindow window(20);
    QVERIFY(window.samples().isEmpty());
    add(window, 10);
    const QList<EyeTrackingSample> first = window.samples();
    add(window, 20);
    QCOMPARE(stampsOf(window.samples()), Stamps({10, 20}));
    add(window, 40);
    QCOMPARE(stampsOf(window.samples()), Stamps({20, 40}));
    QVERIFY2(window.samples().isSharedWith(window.samples()), "calls between two samples share one list");
    QCOMPARE(stampsOf(first), Stamps({10}));
}

void TestSampleWindow::samples_since_a_number_data() {
    dataColumns<int, Stamps, int>("number", "newer", "missedCount");
    // Ten samples were added. The numbers count from the first of them, and numbers 7 to 10 are in the window.
    QTest::newRow("before the window was created") << -1000 << Stamps{70, 80, 90, 100} << 6;
    QTest::newRow("before the first sample") << 0 << Stamps{70, 80, 90, 100} << 6;
    QTest::newRow("the next sample is dropped") << 5 << Stamps{70, 80, 90, 100} << 1;
    QTest::newRow("the newest dropped sample") << 6 << Stamps{70, 80, 90, 100} << 0;
    QTest::newRow("the oldest sample") << 7 << Stamps{80, 90, 100} << 0;
    QTest::newRow("the newest sample") << 10 << Stamps() << 0;
    QTest::newRow("a future number") << 1000 << Stamps() << 0;
}

void TestSampleWindow::samples_since_a_number() {
    QFETCH(const int, number);
    QFETCH(const int, missedCount);
    SampleWindow earlier(30);
    for (int i = 0; i < 2000; ++i)
        add(earlier, i);
    SampleWindow window(30);
    QVERIFY(window.samplesSince(0).samples.empty());
    const quint64 before = add(window, 10) - 1;
    for (qint64 stamp = 20; stamp <= 100; stamp += 10)
        add(window, stamp);

    const SamplesSince since = window.samplesSince(before + static_cast<quint64>(number));
    QCOMPARE(since.missedCount.value(), static_cast<quint64>(missedCount));
    QCOMPARE(since.windowCount, 4);
    Stamps stamps;
    for (const NumberedSample &entry : since.samples) {
        stamps << entry.sample.timestamp;
        QCOMPARE(entry.number, before + static_cast<quint64>(entry.sample.timestamp / 10));
        QCOMPARE(entry.arrival, arrivalAt(entry.sample.timestamp));
    }
    QTEST(stamps, "newer");
}

void TestSampleWindow::missed_samples_are_counted_per_window() {
    SampleWindow window(10);
    SampleWindow other(10);
    QList<quint64> numbers;
    for (int i = 0; i < 100; ++i) {
        for (int k = 0; k < i % 3; ++k)
            add(other, i);
        numbers << add(window, i);
    }
    // The window has the samples 89 to 99. Both numbers of a range can be those of the other window.
    for (int i = 0; i < 100; ++i) {
        QCOMPARE(window.samplesSince(numbers[i]).missedCount.value(), static_cast<quint64>(std::max(0, 88 - i)));
        for (int k = i; k < 100; ++k) {
            const quint64 last = numbers[k] + (k % 3 == 1 ? 1 : 0);
            const auto count = static_cast<quint64>(k - i);
            QCOMPARE(window.countBetween(numbers[i], last).value(), count);
            const SamplesSince range = window.samplesSince(numbers[i], last);
            QCOMPARE(range.samples.size() + range.missedCount.value(), count);
            QCOMPARE(range.samples.size(), static_cast<std::size_t>(std::max(0, k - std::max(i, 88))));
        }
    }
    QCOMPARE(window.countBetween(numbers[5], numbers[3]).value(), quint64(0));
}

void TestSampleWindow::counts_without_history_are_unknown() {
    SampleWindow window(10);
    SampleWindow other(10);
    const quint64 first = add(window, 0);
    const int sampleCount = static_cast<int>(SampleNumbers::maxRunCount) + 1000;
    for (int i = 1; i < sampleCount; ++i) {
        add(other, i);
        add(window, i);
    }
    const auto droppedCount = static_cast<quint64>(sampleCount - 11);
    QCOMPARE(window.samplesSince(first + 20000).missedCount.value(), droppedCount - 10001);
    QVERIFY(!window.samplesSince(first).missedCount);
    QVERIFY(!window.countBetween(first, first + 1));
}

void TestSampleWindow::arrival_never_decreases() {
    SampleWindow window(2000);
    for (const qint64 ms : {5, 3, 7})
        (void)window.add(EyeTrackingSample(), arrivalAt(ms));
    const std::vector<NumberedSample> samples = window.samplesSince(0).samples;
    QCOMPARE(samples.at(1).arrival, arrivalAt(5));
    QCOMPARE(samples.at(2).arrival, arrivalAt(7));
}

OCELA_TEST(TestSampleWindow)
#include "tst_sample_window.moc"
