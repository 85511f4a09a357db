#include "core/clock_watch.h"
#include "core/recording_statistics.h"
#include "support/test_main.h"

#include <cmath>

namespace {

struct Row {
    RecordingStatistics::Row cells;
    std::optional<RecordingStatistics::Origin> origin;
};

/// Returns `count` rows at 100 Hz. Their right eye is crossed. The left eye is detected in every second row.
std::vector<Row> rows(int count) {
    std::vector<Row> rows;
    for (int i = 0; i < count; ++i) {
        Row row{{true, {70, 20}, {20, 70}},
                RecordingStatistics::Origin{std::chrono::milliseconds(10 * i), i % 2 == 0, true}};
        rows.push_back(row);
    }
    return rows;
}

template <typename Change>
std::vector<Row> changed(std::vector<Row> rows, Change change) {
    for (std::size_t i = 0; i < rows.size(); ++i)
        change(rows[i], i);
    return rows;
}

QString text(std::optional<double> value) {
    return value ? QString::number(*value, 'g', 6) : "-";
}

}  // namespace

Q_DECLARE_METATYPE(std::vector<Row>)

class TestRecordingStatistics : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void figures_of_a_recording_data();
    void figures_of_a_recording();
    void steps_of_the_system_clock_are_noticed();
};

void TestRecordingStatistics::figures_of_a_recording_data() {
    QTest::addColumn<std::vector<Row>>("rows");
    // Number of samples, duration (ms), rate (Hz), longest gap (ms), valid shares (combined, left, right), crossed.
    QTest::addColumn<QString>("figures");

    QTest::newRow("no samples") << rows(0) << "0 - - - - - - 0";
    QTest::newRow("one sample") << rows(1) << "1 0 - - 1 1 1 0";
    QTest::newRow("29 crossed samples") << rows(29) << "29 280 100 10 1 0.517241 1 0";
    QTest::newRow("30 crossed samples") << rows(30) << "30 290 100 10 1 0.5 1 1";
    QTest::newRow("gap") << changed(rows(41), [](Row &row, std::size_t i) {
        if (i >= 20)
            row.origin->arrival += std::chrono::microseconds(99'500);
    }) << "41 499.5 80.0801 109.5 1 0.512195 1 1";
    QTest::newRow("all samples arrive at once")
        << changed(rows(40), [](Row &row, std::size_t) { row.origin->arrival = std::chrono::milliseconds(5); })
        << "40 0 - 0 1 0.5 1 1";
    QTest::newRow("only valid samples show that the right eye is crossed")
        << changed(rows(40), [](Row &row, std::size_t i) { row.cells.valid = i < 10; }) << "40 390 100 10 0.25 0.5 1 0";
    QTest::newRow("only a detected right eye shows that it is crossed")
        << changed(rows(40), [](Row &row, std::size_t i) { row.origin->r_valid = i < 10; })
        << "40 390 100 10 1 0.5 0.25 0";
    QTest::newRow("last origins are unknown") << changed(rows(40), [](Row &row, std::size_t i) {
        if (i >= 20)
            row.origin.reset();
    }) << "40 190 100 10 1 0.5 1 1";
    QTest::newRow("values that are not numbers")
        << changed(rows(40), [](Row &row, std::size_t i) { row.cells.right.x = i % 2 == 0 ? std::nan("") : 20; })
        << "40 390 100 10 1 0.5 1 0";
}

void TestRecordingStatistics::figures_of_a_recording() {
    QFETCH(std::vector<Row>, rows);
    RecordingStatistics statistics;
    for (const Row &row : rows)
        statistics.add(row.cells, row.origin);
    const QStringList figures{QString::number(statistics.sampleCount()),
                              text(statistics.durationMs()),
                              text(statistics.rateHz()),
                              text(statistics.longestGapMs()),
                              text(statistics.validShare()),
                              text(statistics.leftValidShare()),
                              text(statistics.rightValidShare()),
                              QString::number(statistics.isRightEyeCrossed())};
    QTEST(figures.join(' '), "figures");
}

void TestRecordingStatistics::steps_of_the_system_clock_are_noticed() {
    using namespace std::chrono_literals;
    std::chrono::nanoseconds ahead = 5h;
    ClockWatch watch([&ahead] {
        const auto now = std::chrono::steady_clock::now().time_since_epoch() + ahead;
        return std::chrono::system_clock::time_point(
            std::chrono::duration_cast<std::chrono::system_clock::duration>(now));
    });
    const std::pair<std::chrono::nanoseconds, bool> changes[] = {
        {0s, false}, {90ms, false}, {90ms, false}, {150ms, true}, {0s, false}, {-1h, true}, {-90ms, false}};
    for (const auto &[change, isStep] : changes) {
        ahead += change;
        QVERIFY2(watch.hasStepped() == isStep, qPrintable(QString::number(change.count())));
    }
}

OCELA_TEST(TestRecordingStatistics)
#include "tst_recording_statistics.moc"
