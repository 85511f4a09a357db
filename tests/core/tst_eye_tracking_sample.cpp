#include "core/eye_tracking_sample.h"
#include "support/test_main.h"

#include <QJsonDocument>
#include <limits>

class TestEyeTrackingSample : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void pixels_are_truncated_and_not_clamped_data();
    void pixels_are_truncated_and_not_clamped();
    void pixel_fields_come_from_their_percent_fields();
    void json_has_all_fields_except_the_eye_flags();
};

void TestEyeTrackingSample::pixels_are_truncated_and_not_clamped_data() {
    using Limits = std::numeric_limits<float>;
    dataColumns<float, int, int>("percent", "size", "pixel");
    QTest::newRow("just before the edge") << 99.99F << 1080 << 1079;
    QTest::newRow("half a pixel left of the area") << -1.0F << 50 << 0;
    QTest::newRow("left of the area") << -10.0F << 1920 << -192;
    QTest::newRow("right of the area") << 150.0F << 1920 << 2880;
    QTest::newRow("beyond the integer range") << 1e30F << 1920 << std::numeric_limits<int>::max();
    QTest::newRow("minus infinity") << -Limits::infinity() << 1920 << std::numeric_limits<int>::min();
    QTest::newRow("NaN") << Limits::quiet_NaN() << 1920 << 0;
}

void TestEyeTrackingSample::pixels_are_truncated_and_not_clamped() {
    QFETCH(float, percent);
    QFETCH(int, size);
    EyeTrackingSample sample;
    sample.x = percent;
    sample.calculatePixels(size, 1);
    QTEST(sample.x_px, "pixel");
}

void TestEyeTrackingSample::pixel_fields_come_from_their_percent_fields() {
    EyeTrackingSample sample{0, false, false, false, 1, 2, 3, 4, 5, 6};
    sample.l_pupil_x = 7;
    sample.calculatePixels(100, 1000);
    QCOMPARE(QList<int>({sample.x_px, sample.l_x_px, sample.r_x_px}), QList<int>({1, 2, 3}));
    QCOMPARE(QList<int>({sample.y_px, sample.l_y_px, sample.r_y_px}), QList<int>({40, 50, 60}));
    QCOMPARE(sample.l_pupil_x, 7);
}

void TestEyeTrackingSample::json_has_all_fields_except_the_eye_flags() {
    const EyeTrackingSample sample{
        1700000000123, true, true, true, 1.5F, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 12.3F, 0.5F, 62};
    QCOMPARE(QJsonDocument(sample.toJson()).toJson(QJsonDocument::Compact),
             QByteArray(R"({"distance_cm":62,"focus":0.5,"l_pupil_mm":17,"l_pupil_x":13,"l_pupil_y":14,"l_x":2,)"
                        R"("l_x_px":9,"l_y":5,"l_y_px":10,"r_pupil_mm":12.300000190734863,"r_pupil_x":15,)"
                        R"("r_pupil_y":16,"r_x":3,"r_x_px":11,"r_y":6,"r_y_px":12,"timestamp":1700000000123,)"
                        R"("valid":true,"x":1.5,"x_px":7,"y":4,"y_px":8})"));
}

OCELA_TEST(TestEyeTrackingSample)
#include "tst_eye_tracking_sample.moc"
