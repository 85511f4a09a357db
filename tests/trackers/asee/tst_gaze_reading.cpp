#include "asee_fixture.h"
#include "support/test_main.h"
#include "trackers/asee/gaze_reading.h"

#include <QTest>
#include <limits>

namespace at = asee::gaze_record;
using gaze_reading::Eyes;

class TestGazeReading : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void eyes_count_by_their_status_data();
    void eyes_count_by_their_status();
    void fills_a_sample_in_percent_and_pixels();
    void numbers_that_are_none_count_as_0_data();
    void numbers_that_are_none_count_as_0();
    void calibration_shows_the_valid_eyes_data();
    void calibration_shows_the_valid_eyes();
    void remembers_where_eyes_were_seen();
};

namespace {

constexpr QSize area(1920, 1024);

EyeTrackingSample sampleOf(const TestRecord &record) {
    return gaze_reading::sampleOf(GazeRecord(record.data()), area);
}

}  // namespace

void TestGazeReading::eyes_count_by_their_status_data() {
    QTest::addColumn<int>("left");
    QTest::addColumn<int>("right");
    QTest::addColumn<QList<bool>>("valid");  // left, right, sample
    QTest::newRow("both tracked") << 0 << 0 << QList<bool>{true, true, true};
    QTest::newRow("left tracked just so") << 1 << 2 << QList<bool>{true, false, true};
    QTest::newRow("right alone") << 3 << -1 << QList<bool>{false, true, true};
    QTest::newRow("none") << 2 << 5 << QList<bool>{false, false, false};
}

void TestGazeReading::eyes_count_by_their_status() {
    QFETCH(int, left);
    QFETCH(int, right);
    const EyeTrackingSample sample = sampleOf(TestRecord().set(at::leftStatus, left).set(at::rightStatus, right));
    QTEST(QList<bool>({sample.l_valid, sample.r_valid, sample.valid}), "valid");
}

void TestGazeReading::fills_a_sample_in_percent_and_pixels() {
    TestRecord record;
    record.setPoint(16, 0.5F, 0.25F).setPoint(216, -0.25F, 1.5F).setPoint(416, 0.125F, 0.75F);
    record.set(632, 3.5F).set(796, 4.25F);
    EyeTrackingSample expected;
    expected.valid = true;
    expected.x = 50;
    expected.x_px = 960;
    expected.y = 25;
    expected.y_px = 256;
    expected.l_x = -25;
    expected.l_x_px = -480;
    expected.l_y = 150;
    expected.l_y_px = 1536;
    expected.r_x = 12.5F;
    expected.r_x_px = 240;
    expected.r_y = 75;
    expected.r_y_px = 768;
    expected.l_pupil_mm = 3.5F;
    expected.r_pupil_mm = 4.25F;
    QCOMPARE(sampleOf(record).toJson(), expected.toJson());
}

void TestGazeReading::numbers_that_are_none_count_as_0_data() {
    QTest::addColumn<float>("number");
    QTest::newRow("NaN") << std::numeric_limits<float>::quiet_NaN();
    QTest::newRow("infinite") << -std::numeric_limits<float>::infinity();
    QTest::newRow("infinite as percent") << std::numeric_limits<float>::max();
}

void TestGazeReading::numbers_that_are_none_count_as_0() {
    QFETCH(float, number);
    const EyeTrackingSample sample = sampleOf(TestRecord().set(at::gaze, number));
    QCOMPARE(sample.x, 0.0F);
    QCOMPARE(sample.x_px, 0);
}

void TestGazeReading::calibration_shows_the_valid_eyes_data() {
    QTest::addColumn<int>("leftFlags");
    QTest::addColumn<int>("rightFlags");
    QTest::addColumn<QPointF>("gaze");
    QTest::newRow("both: their mean") << 1 << 3 << QPointF(0.5, 0.25);
    QTest::newRow("left alone") << 1 << 2 << QPointF(0.25, 0.125);
    QTest::newRow("right alone") << 0 << 1 << QPointF(0.75, 0.375);
    QTest::newRow("none: the corner") << 2 << 4 << QPointF(0, 0);
}

void TestGazeReading::calibration_shows_the_valid_eyes() {
    QFETCH(int, leftFlags);
    QFETCH(int, rightFlags);
    TestRecord record;
    record.set(212, leftFlags).setPoint(216, 0.25F, 0.125F).set(412, rightFlags).setPoint(416, 0.75F, 0.375F);
    const FractionPoint gaze = gaze_reading::gazeOf(GazeRecord(record.data()));
    QTEST(QPointF(static_cast<double>(gaze.x), static_cast<double>(gaze.y)), "gaze");
}

void TestGazeReading::remembers_where_eyes_were_seen() {
    const auto centre = [](const Eyes &eyes) {
        return QPointF(static_cast<double>(eyes.centre().x), static_cast<double>(eyes.centre().y));
    };
    TestRecord record;
    record.setPoint(616, 0.25F, 0.5F).setPoint(780, 0.75F, 1.0F);
    Eyes eyes;
    const auto look = [&](int left, int right) {
        record.set(612, left).set(776, right);
        eyes = gaze_reading::eyesOf(GazeRecord(record.data()), eyes);
        return centre(eyes);
    };
    QCOMPARE(look(0, 2), QPointF(-1, -1));
    QCOMPARE(look(1, 1), QPointF(0.5, 0.75));
    QCOMPARE(look(0, 0), QPointF(0.5, 0.75));
    QCOMPARE(look(1, 0), QPointF(0.25, 0.5));
    QCOMPARE(look(0, 1), QPointF(0.75, 1.0));
    QCOMPARE(look(0, 0), QPointF(0.75, 1.0));
}

OCELA_TEST(TestGazeReading)
#include "tst_gaze_reading.moc"
