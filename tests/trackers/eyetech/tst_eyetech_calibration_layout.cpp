#include "support/test_main.h"
#include "trackers/eyetech/eyetech_calibration_layout.h"

#include <limits>

namespace layout = eyetech::calibration_layout;

class TestEyetechCalibrationLayout : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void points_are_truncated_to_pixels_data();
    void points_are_truncated_to_pixels();
    void score_decides_the_colour_and_text();
    void texts_do_not_cover_each_other();
};

void TestEyetechCalibrationLayout::points_are_truncated_to_pixels_data() {
    dataColumns<float, float, float, QPoint, QPoint>("x", "y", "offset", "centre", "gaze");
    constexpr float nan = std::numeric_limits<float>::quiet_NaN();
    constexpr int maxPixel = 1000000;
    QTest::newRow("middle") << 50.0F << 50.0F << 0.0F << QPoint(960, 540) << QPoint(960, 540);
    QTest::newRow("truncated") << 33.33F << 66.66F << 0.05F << QPoint(639, 719) << QPoint(640, 720);
    QTest::newRow("gaze outside the area") << 5.0F << 5.0F << -10.0F << QPoint(96, 54) << QPoint(-96, -54);
    QTest::newRow("target outside the area") << -20.0F << 120.0F << 0.0F << QPoint(0, 1080) << QPoint(-384, 1296);
    QTest::newRow("NaN") << nan << nan << nan << QPoint(0, 0) << QPoint(0, 0);
    QTest::newRow("overflow") << 3e38F << 3e38F << 0.0F << QPoint(1920, 1080) << QPoint(maxPixel, maxPixel);
    QTest::newRow("negative overflow") << 50.0F << 50.0F << -3e38F << QPoint(960, 540) << QPoint(-maxPixel, -maxPixel);
}

void TestEyetechCalibrationLayout::points_are_truncated_to_pixels() {
    QFETCH(const float, x);
    QFETCH(const float, y);
    QFETCH(const float, offset);
    const QSize area(1920, 1080);
    QTEST(layout::targetCentre(area, x, y), "centre");
    QTEST(layout::gazePoint(area, {{}, x, y}, {offset, offset, 0}), "gaze");
}

void TestEyetechCalibrationLayout::score_decides_the_colour_and_text() {
    const auto colour = [](float left, float right) {
        return layout::scoreColour({{}, 0, 0, {0, 0, left}, {0, 0, right}});
    };
    const QColor good("#3C0");
    const QColor bad("#C30");
    QCOMPARE(colour(9.99F, 9.99F), good);
    QCOMPARE(colour(10.0F, 0.0F), bad);
    QCOMPARE(colour(0.0F, 10.0F), bad);
    QCOMPARE(colour(std::numeric_limits<float>::quiet_NaN(), 1.0F), bad);
    QCOMPARE(layout::scoreText("L:", {0, 0, 10.0F}), QString("L:10.00"));
    QCOMPARE(layout::scoreText("R:", {0, 0, 0.126F}), QString("R:0.13"));
}

void TestEyetechCalibrationLayout::texts_do_not_cover_each_other() {
    const QSize area(1000, 500);
    const std::vector<QRect> wanted{{100, 100, 60, 20}, {110, 105, 60, 20}, {300, 100, 60, 20},
                                    {990, 490, 60, 20}, {985, 488, 60, 20}, {-1000000, -1000000, 60, 20}};
    const std::vector<QRect> expected{{100, 100, 60, 20}, {110, 120, 60, 20}, {300, 100, 60, 20},
                                      {940, 480, 60, 20}, {940, 460, 60, 20}, {0, 0, 60, 20}};
    QCOMPARE(layout::separated(area, wanted, {}), expected);
    const std::vector<QRect> target{layout::targetBox({100, 100})};
    QCOMPARE(layout::separated(area, {{110, 105, 60, 20}}, target), (std::vector<QRect>{{110, 125, 60, 20}}));
    // Many texts at one place end in a limited time.
    QVERIFY(layout::separated(area, std::vector<QRect>(2000, QRect(0, 0, 60, 20)), {}).back().isValid());
}

OCELA_TEST(TestEyetechCalibrationLayout)
#include "tst_eyetech_calibration_layout.moc"
