#include "api/sample_json.h"
#include "api/sample_json_blocks.h"
#include "api/sample_json_cache.h"
#include "core/sample_window.h"
#include "support/fake_tracker.h"
#include "support/test_main.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QRandomGenerator>
#include <QTest>
#include <cstring>
#include <limits>
#include <optional>

/// Compares the text with the output of QJsonDocument for the same samples.
class TestSampleJson : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void edge_numbers_are_written_like_Qt();
    void random_samples_are_written_like_Qt();

    void blocks_follow_the_window_data();
    void blocks_follow_the_window();
    void unchanged_blocks_are_kept();
    void cache_follows_the_selected_tracker();
};

Q_DECLARE_METATYPE(std::vector<int>)

namespace {

QByteArray written(const EyeTrackingSample &sample) {
    return SampleJson(sample).toByteArray();
}

QByteArray compact(const QJsonObject &object) {
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

/// Fills the fields with numbers from `f` and `i`.
template <typename MakeFloat, typename MakeInteger>
EyeTrackingSample sampleOf(qint64 timestamp, MakeFloat f, MakeInteger i) {
    return {timestamp, false, false, i() % 2 != 0, f(), f(), f(), f(), f(), f(), i(), i(),
            i(),       i(),   i(),   i(),          i(), i(), i(), i(), f(), f(), f(), f()};
}

/// Returns a different sample for each number.
EyeTrackingSample numbered(int number) {
    return {number, false, false, false, static_cast<float>(number) / 3};
}

/// A window that keeps the newest `size` samples, because they are delivered 1 ms apart.
class Feed {
public:
    explicit Feed(int size) : window_(size - 1) {}

    void deliver(int count) {
        for (int i = 0; i < count; ++i)
            (void)window_.add(numbered(++delivered_), {});
    }
    [[nodiscard]] SampleWindow &window() { return window_; }

private:
    SampleWindow window_;
    int delivered_ = 0;
};

QByteArray joined(const SampleJsonBlocks::List &list) {
    return '[' + QByteArrayList(list.pieces.toList()).join() + ']';
}

QByteArray writtenByQt(const QList<EyeTrackingSample> &samples) {
    QJsonArray array;
    for (const EyeTrackingSample &sample : samples)
        array.append(sample.toJson());
    return QJsonDocument(array).toJson(QJsonDocument::Compact);
}

}  // namespace

void TestSampleJson::edge_numbers_are_written_like_Qt() {
    using Limits = std::numeric_limits<float>;
    for (const float number : {0.0F, -0.0F, 12.3F, 1e-7F, 1e-4F, 16777216.0F, 1e15F, 9007199254740992.0F, -1e18F, 1e19F,
                               18446744073709551616.0F, 1e22F, Limits::denorm_min(), -Limits::min(), Limits::max(),
                               Limits::quiet_NaN(), -Limits::infinity()}) {
        const EyeTrackingSample sample = sampleOf(
            7, [number] { return number; }, [] { return -1; });
        QCOMPARE(written(sample), compact(sample.toJson()));
    }
    using Stamps = std::numeric_limits<qint64>;
    for (const qint64 timestamp :
         {Stamps::min(), Stamps::max(), (qint64(1) << 53) - 1, (qint64(1) << 53) + 1, qint64(-1)}) {
        const EyeTrackingSample sample{timestamp};
        QCOMPARE(written(sample), compact(sample.toJson()));
    }
}

void TestSampleJson::random_samples_are_written_like_Qt() {
    QRandomGenerator random(1);
    const auto makeInteger = [&] { return static_cast<qint32>(random.generate()); };
    const auto makeFloat = [&] {
        const quint32 bits = random.generate();
        float number;
        std::memcpy(&number, &bits, sizeof(bits));
        return number;
    };
    for (int i = 0; i < 5000; ++i) {
        const EyeTrackingSample sample = sampleOf(static_cast<qint64>(random.generate64()), makeFloat, makeInteger);
        QCOMPARE(written(sample), compact(sample.toJson()));
    }
}

void TestSampleJson::blocks_follow_the_window_data() {
    constexpr int blockSize = SampleJsonBlocks::samplesPerBlock;
    QTest::addColumn<int>("windowSize");
    QTest::addColumn<std::vector<int>>("deliveries");
    const auto row = [](const char *name, int windowSize, const std::vector<int> &deliveries) {
        QTest::newRow(name) << windowSize << deliveries;
    };
    row("no samples", 3, {0, 0});
    row("first sample", 3, {0, 1, 0});
    row("window fills and moves", 3, {1, 1, 1, 1, 1});
    row("only the newest sample remains", 3, {3, 2});
    row("all samples are replaced", 3, {3, 3, 7});
    row("several blocks are filled", 1000, {3, 1000, 1});
    row("whole blocks are dropped", 1000, {1000, 2 * blockSize, blockSize});
    row("parts of blocks are dropped", 1000, {1000, 300, 100});
    row("a block becomes full", 1000, {blockSize - 1, 1, 1});
    row("a block becomes empty", 1000, {1000, blockSize - 1, 1, 1});
    row("one block", blockSize, {blockSize, 1, 1});
}

void TestSampleJson::blocks_follow_the_window() {
    QFETCH(const int, windowSize);
    QFETCH(const std::vector<int>, deliveries);
    Feed feed(windowSize);
    SampleJsonBlocks blocks;
    QList<SampleJsonBlocks::List> lists;
    QList<QByteArray> expected;
    for (const int count : deliveries) {
        feed.deliver(count);
        lists.append(blocks.update(feed.window().samplesSince(blocks.lastNumber())));
        expected.append(writtenByQt(feed.window().samples()));
        QCOMPARE(lists.last().sampleCount, feed.window().samples().size());
    }
    // At the end, because an update must not modify an earlier list.
    for (int i = 0; i < lists.size(); ++i)
        QCOMPARE(joined(lists[i]), expected[i]);
}

void TestSampleJson::unchanged_blocks_are_kept() {
    Feed feed(500);
    SampleJsonBlocks blocks;
    feed.deliver(500);
    const SampleJsonBlocks::List first = blocks.update(feed.window().samplesSince(0));
    const SampleJsonBlocks::List same = blocks.update(feed.window().samplesSince(blocks.lastNumber()));
    QCOMPARE(same.pieces.constData(), first.pieces.constData());
    feed.deliver(3);
    const SampleJsonBlocks::List moved = blocks.update(feed.window().samplesSince(blocks.lastNumber()));
    QCOMPARE(moved.pieces.size(), first.pieces.size());
    for (int i = 2; i < first.pieces.size() - 2; ++i)
        QCOMPARE(static_cast<const void *>(moved.pieces[i].constData()), first.pieces[i].constData());
}

void TestSampleJson::cache_follows_the_selected_tracker() {
    SampleJsonCache cache;
    std::optional<FakeTracker> one(std::in_place);
    FakeTracker other;
    const auto hasTextsOf = [&](FakeTracker &tracker) {
        return cache.lastSample(tracker) == compact(tracker.getLastSample().toJson()) &&
               joined(cache.samples(tracker)) == writtenByQt(tracker.getSamples());
    };
    QVERIFY(hasTextsOf(*one));
    for (int i = 0; i < 5; ++i) {
        one->addSample(numbered(1));
        other.addSample(numbered(i));
        QVERIFY(hasTextsOf(*one));
        QVERIFY(hasTextsOf(other));
    }
    one.reset();
    one.emplace();
    QVERIFY2(hasTextsOf(*one), "a new tracker at the address of a destroyed one");
    one->addSample(numbered(2));
    QVERIFY(hasTextsOf(*one));
}

OCELA_TEST(TestSampleJson)
#include "tst_sample_json.moc"
