#include "support/test_main.h"
#include "trackers/eyetech/calibration_picture.h"

#include <QTest>
#include <limits>

namespace picture = calibration_picture;

class TestCalibrationPicture : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void points_are_cut_to_whole_pixels_data();
    void points_are_cut_to_whole_pixels();
    void both_eyes_decide_the_colour_data();
    void both_eyes_decide_the_colour();
};

void TestCalibrationPicture::points_are_cut_to_whole_pixels_data() {
    QTest::addColumn<float>("x");
    QTest::addColumn<float>("y");
    QTest::addColumn<float>("offset");
    QTest::addColumn<QPoint>("centre");
    QTest::addColumn<QPoint>("gaze");
    constexpr float nan = std::numeric_limits<float>::quiet_NaN();
    constexpr int most = 1000000;
    QTest::newRow("middle") << 50.0F << 50.0F << 0.0F << QPoint(960, 540) << QPoint(960, 540);
    QTest::newRow("cut, not rounded") << 33.33F << 66.66F << 0.05F << QPoint(639, 719) << QPoint(640, 720);
    QTest::newRow("gaze beyond the edges") << 5.0F << 5.0F << -10.0F << QPoint(96, 54) << QPoint(-96, -54);
    QTest::newRow("target beyond the edges") << -20.0F << 120.0F << 0.0F << QPoint(0, 1080) << QPoint(-384, 1296);
    QTest::newRow("no numbers") << nan << nan << nan << QPoint(0, 0) << QPoint(0, 0);
    QTest::newRow("beyond all pixels") << 3e38F << 3e38F << 0.0F << QPoint(1920, 1080) << QPoint(most, most);
    QTest::newRow("before all pixels") << 50.0F << 50.0F << -3e38F << QPoint(960, 540) << QPoint(-most, -most);
}

void TestCalibrationPicture::points_are_cut_to_whole_pixels() {
    QFETCH(const float, x);
    QFETCH(const float, y);
    QFETCH(const float, offset);
    const QSize area(1920, 1080);
    QTEST(picture::targetCentre(area, x, y), "centre");
    const QPoint gaze = picture::gazePoint(area, {{}, x, y}, {offset, offset, 0});
    QTEST(gaze, "gaze");
    QCOMPARE(picture::textPosition(gaze).x(), gaze.x() + 10.0);
}

void TestCalibrationPicture::both_eyes_decide_the_colour_data() {
    QTest::addColumn<float>("left");
    QTest::addColumn<float>("right");
    QTest::addColumn<QString>("colour");
    QTest::addColumn<QString>("text");
    QTest::newRow("just good") << 9.99F << 9.99F << "#3C0"
                               << "L:9.99";
    QTest::newRow("left just too far") << 10.0F << 0.0F << "#C30"
                                       << "L:10.00";
    QTest::newRow("right just too far") << 0.126F << 10.0F << "#C30"
                                        << "L:0.13";
    QTest::newRow("no number") << std::numeric_limits<float>::quiet_NaN() << 1.0F << "#C30"
                               << "L:nan";
}

void TestCalibrationPicture::both_eyes_decide_the_colour() {
    QFETCH(const float, left);
    QFETCH(const float, right);
    QFETCH(const QString, colour);
    const picture::Target target{{}, 0, 0, {0, 0, left}, {0, 0, right}};
    QCOMPARE(picture::scoreColour(target), QColor(colour));
    QTEST(picture::scoreText("L:", target.leftScore), "text");
}

OCELA_TEST(TestCalibrationPicture)
#include "tst_calibration_picture.moc"
