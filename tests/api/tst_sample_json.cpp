#include "api/sample_json.h"
#include "api/sample_json_blocks.h"
#include "support/test_main.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QRandomGenerator>
#include <QTest>
#include <cstring>
#include <limits>

/// The text that is written by hand, against the one that Qt makes of the same samples.
class TestSampleJson : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void numbers_read_as_Qt_writes_them_data();
    void numbers_read_as_Qt_writes_them();
    void any_bits_read_as_Qt_writes_them();

    void blocks_follow_the_window_data();
    void blocks_follow_the_window();
    void texts_are_kept_while_the_window_moves();
};

using Samples = QList<EyeTrackingSample>;
Q_DECLARE_METATYPE(std::vector<int>)

namespace {

QByteArray written(const EyeTrackingSample &sample) {
    char text[sampleJsonRoom];
    return QByteArray(text, static_cast<int>(writeSampleJson(text, sample) - text));
}

QByteArray compact(const QJsonObject &object) {
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

constexpr float EyeTrackingSample::*floats[] = {&EyeTrackingSample::x,          &EyeTrackingSample::l_x,
                                                &EyeTrackingSample::r_x,        &EyeTrackingSample::y,
                                                &EyeTrackingSample::l_y,        &EyeTrackingSample::r_y,
                                                &EyeTrackingSample::l_pupil_mm, &EyeTrackingSample::r_pupil_mm,
                                                &EyeTrackingSample::focus,      &EyeTrackingSample::distance_cm};
constexpr qint32 EyeTrackingSample::*integers[] = {&EyeTrackingSample::x_px,      &EyeTrackingSample::y_px,
                                                   &EyeTrackingSample::l_x_px,    &EyeTrackingSample::l_y_px,
                                                   &EyeTrackingSample::r_x_px,    &EyeTrackingSample::r_y_px,
                                                   &EyeTrackingSample::l_pupil_x, &EyeTrackingSample::l_pupil_y,
                                                   &EyeTrackingSample::r_pupil_x, &EyeTrackingSample::r_pupil_y};

/// Different numbers in all fields, from `make`, which is asked for one after the other.
template <typename Make>
EyeTrackingSample sampleOf(Make make) {
    EyeTrackingSample sample;
    for (float EyeTrackingSample::*field : floats) {
        const quint32 bits = make();
        std::memcpy(&(sample.*field), &bits, sizeof(bits));
    }
    for (qint32 EyeTrackingSample::*field : integers)
        sample.*field = static_cast<qint32>(make());
    sample.timestamp = static_cast<qint64>(quint64(make()) << 32 | make());
    sample.valid = make() % 2;
    return sample;
}

/// A sample that shows its number.
EyeTrackingSample numbered(int number) {
    EyeTrackingSample sample;
    sample.timestamp = number;
    sample.x = static_cast<float>(number) / 3;
    return sample;
}

Samples numbered(const std::vector<int> &numbers) {
    Samples samples;
    for (const int number : numbers)
        samples.append(numbered(number));
    return samples;
}

std::vector<int> range(int from, int to) {
    std::vector<int> numbers;
    for (int number = from; number < to; ++number)
        numbers.push_back(number);
    return numbers;
}

QByteArray joined(const SampleJsonBlocks::List &list) {
    return '[' + QByteArrayList(list.pieces.toList()).join() + ']';
}

QByteArray asQtWrites(const Samples &samples) {
    QJsonArray array;
    for (const EyeTrackingSample &sample : samples)
        array.append(sample.toJson());
    return QJsonDocument(array).toJson(QJsonDocument::Compact);
}

}  // namespace

void TestSampleJson::numbers_read_as_Qt_writes_them_data() {
    QTest::addColumn<float>("number");
    QTest::addColumn<QByteArray>("text");
    using Limits = std::numeric_limits<float>;
    const auto row = [](const char *name, float number, const char *text) {
        QTest::newRow(name) << number << QByteArray(text);
    };
    row("zero", 0.0F, "0");
    row("minus zero", -0.0F, "0");
    row("a fraction is widened, not rounded", 12.3F, "12.300000190734863");
    row("small", 1e-7F, "1.0000000116860974e-07");
    row("just above the exponent's bound", 1e-4F, "9.999999747378752e-05");
    row("the end of a float's whole numbers", 16777216.0F, "16777216");
    row("1e15", 1e15F, "999999986991104");
    row("2^53", 9007199254740992.0F, "9007199254740992");
    row("-1e18", -1e18F, "-999999984306749400");
    row("1e19", 1e19F, "9999999980506448000");
    row("2^64", 18446744073709551616.0F, "18446744073709552000");
    row("1e22", 1e22F, "9.999999778196308e+21");
    row("smallest", Limits::denorm_min(), "1.401298464324817e-45");
    row("smallest that is normal", -Limits::min(), "-1.1754943508222875e-38");
    row("largest", Limits::max(), "3.4028234663852886e+38");
    row("not a number", Limits::quiet_NaN(), "null");
    row("infinite", -Limits::infinity(), "null");
}

void TestSampleJson::numbers_read_as_Qt_writes_them() {
    QFETCH(const float, number);
    QFETCH(const QByteArray, text);
    EyeTrackingSample alone;
    alone.x = number;
    QVERIFY2(written(alone).contains("\"x\":" + text + ","), written(alone));
    for (float EyeTrackingSample::*field : floats) {
        EyeTrackingSample sample = numbered(7);
        sample.*field = number;
        QCOMPARE(written(sample), compact(sample.toJson()));
    }
}

void TestSampleJson::any_bits_read_as_Qt_writes_them() {
    for (const qint64 timestamp : {std::numeric_limits<qint64>::min(), std::numeric_limits<qint64>::max(),
                                   (qint64(1) << 53) - 1, (qint64(1) << 53) + 1, qint64(-1), qint64(1764000000123)}) {
        EyeTrackingSample sample = numbered(7);
        sample.timestamp = timestamp;
        QCOMPARE(written(sample), compact(sample.toJson()));
    }
    QRandomGenerator random(1);
    for (int i = 0; i < 5000; ++i) {
        const EyeTrackingSample sample = sampleOf([&] { return random.generate(); });
        QCOMPARE(written(sample), compact(sample.toJson()));
    }
}

void TestSampleJson::blocks_follow_the_window_data() {
    QTest::addColumn<std::vector<int>>("before");
    QTest::addColumn<std::vector<int>>("after");
    const auto row = [](const char *name, const std::vector<int> &before, const std::vector<int> &after) {
        QTest::newRow(name) << before << after;
    };
    row("no samples", {}, {});
    row("the first", {}, {1});
    row("one more and one less", {1, 2, 3}, {2, 3, 4});
    row("only the last stays", {1, 2, 3}, {3});
    row("all change", {1, 2, 3}, {4, 5});
    row("another tracker's, the first alike", {1, 2, 3}, {1, 5, 6});
    row("alike but for the last", {1, 1, 1}, {1, 1, 2});
    row("blocks are filled", range(0, 3), range(0, 1000));
    row("whole blocks go", range(0, 1000), range(2 * SampleJsonBlocks::samplesPerBlock, 1003));
    row("parts of blocks go", range(0, 1000), range(300, 1100));
    row("a block is just full", range(0, SampleJsonBlocks::samplesPerBlock - 1), range(0, 129));
}

void TestSampleJson::blocks_follow_the_window() {
    QFETCH(const std::vector<int>, before);
    QFETCH(const std::vector<int>, after);
    const std::vector<int> afterwards = range(4, 200);
    SampleJsonBlocks blocks;
    QList<SampleJsonBlocks::List> handedOut;
    for (const std::vector<int> &numbers : {before, after, afterwards}) {
        handedOut.append(blocks.update(numbered(numbers)));
        QCOMPARE(handedOut.last().sampleCount, static_cast<int>(numbers.size()));
        QCOMPARE(joined(handedOut.last()), asQtWrites(numbered(numbers)));
    }
    QCOMPARE(joined(handedOut.first()), asQtWrites(numbered(before)));
}

void TestSampleJson::texts_are_kept_while_the_window_moves() {
    SampleJsonBlocks blocks;
    const Samples window = numbered(range(0, 500));
    const SampleJsonBlocks::List first = blocks.update(window);
    QCOMPARE(blocks.update(window).pieces.constData(), first.pieces.constData());
    const SampleJsonBlocks::List moved = blocks.update(numbered(range(3, 501)));
    QCOMPARE(moved.pieces.size(), first.pieces.size());
    for (int i = 2; i < first.pieces.size() - 2; ++i)
        QCOMPARE(static_cast<const void *>(moved.pieces[i].constData()), first.pieces[i].constData());
}

OCELA_TEST(TestSampleJson)
#include "tst_sample_json.moc"
