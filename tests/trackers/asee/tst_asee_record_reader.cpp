#include "asee_fixture.h"
#include "support/test_main.h"
#include "trackers/asee/asee_record_reader.h"

#include <limits>

/// Uses literal offsets, so that a wrong constant fails.
class TestGazeReading : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void validity_depends_on_the_status_data();
    void validity_depends_on_the_status();
    void numbers_become_percent_and_pixels_data();
    void numbers_become_percent_and_pixels();
    void calibration_follows_the_eyes_data();
    void calibration_follows_the_eyes();
};

namespace {

EyeTrackingSample sampleOf(const TestRecord &record) {
    return asee::sampleOf(asee::GazeRecord(record.data()), QSize(1920, 1024));
}

QPointF exact(asee::FractionPoint point) {
    return {static_cast<double>(point.x), static_cast<double>(point.y)};
}

}  // namespace

void TestGazeReading::validity_depends_on_the_status_data() {
    dataColumns<int, int, QList<bool>>("left", "right", "valid");  // valid: left, right, sample
    QTest::newRow("left eye at the limit") << 1 << 2 << QList<bool>{true, false, true};
    QTest::newRow("right eye only") << 3 << -1 << QList<bool>{false, true, true};
    QTest::newRow("neither eye") << 2 << 5 << QList<bool>{false, false, false};
}

void TestGazeReading::validity_depends_on_the_status() {
    QFETCH(int, left);
    QFETCH(int, right);
    const EyeTrackingSample sample = sampleOf(TestRecord().set(944, left).set(1096, right));
    QTEST(QList<bool>({sample.l_valid, sample.r_valid, sample.valid}), "valid");
}

void TestGazeReading::numbers_become_percent_and_pixels_data() {
    dataColumns<int, float, QString, double>("offset", "number", "field", "value");
    using Limits = std::numeric_limits<float>;
    QTest::newRow("gaze x") << 16 << 0.5F << "x_px" << 960.0;
    QTest::newRow("gaze y") << 20 << 0.25F << "y_px" << 256.0;
    QTest::newRow("left eye x outside the area") << 216 << -0.25F << "l_x" << -25.0;
    QTest::newRow("left eye y is truncated") << 220 << 0.0015F << "l_y_px" << 1.0;
    QTest::newRow("right eye x") << 416 << 0.125F << "r_x_px" << 240.0;
    QTest::newRow("right eye y") << 420 << 1.5F << "r_y" << 150.0;
    QTest::newRow("left pupil") << 632 << 3.5F << "l_pupil_mm" << 3.5;
    QTest::newRow("right pupil") << 796 << 4.25F << "r_pupil_mm" << 4.25;
    QTest::newRow("NaN") << 16 << Limits::quiet_NaN() << "x" << 0.0;
    QTest::newRow("percentage overflows") << 16 << Limits::max() << "x" << 0.0;
    QTest::newRow("timestamp stays 0") << 16 << 0.5F << "timestamp" << 0.0;
}

void TestGazeReading::numbers_become_percent_and_pixels() {
    QFETCH(int, offset);
    QFETCH(float, number);
    QFETCH(QString, field);
    QTEST(sampleOf(TestRecord().set(static_cast<std::size_t>(offset), number)).toJson()[field].toDouble(), "value");
}

void TestGazeReading::calibration_follows_the_eyes_data() {
    dataColumns<int, int, QPointF, QPointF>("left", "right", "gaze", "eyes");
    QTest::newRow("both eyes: mean") << 1 << 3 << QPointF(0.5, 0.25) << QPointF(0.5, 0.75);
    QTest::newRow("left only") << 1 << 2 << QPointF(0.25, 0.125) << QPointF(0.25, 0.5);
    QTest::newRow("right eye only") << 0 << 1 << QPointF(0.75, 0.375) << QPointF(0.75, 1.0);
    QTest::newRow("neither eye: corner, previous positions") << 2 << 4 << QPointF(0, 0) << QPointF(-1, -1);
}

void TestGazeReading::calibration_follows_the_eyes() {
    QFETCH(int, left);
    QFETCH(int, right);
    TestRecord record;
    record.set(212, left).setPoint(216, 0.25F, 0.125F).set(412, right).setPoint(416, 0.75F, 0.375F);
    record.set(612, left).setPoint(616, 0.25F, 0.5F).set(776, right).setPoint(780, 0.75F, 1.0F);
    QTEST(exact(asee::gazeOf(asee::GazeRecord(record.data()))), "gaze");
    QTEST(exact(asee::eyesOf(asee::GazeRecord(record.data()), {}).centre()), "eyes");
}

OCELA_TEST(TestGazeReading)
#include "tst_asee_record_reader.moc"
