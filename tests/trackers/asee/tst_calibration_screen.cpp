#include "asee_fixture.h"
#include "support/test_main.h"
#include "trackers/asee/calibration_widget.h"

#include <QTest>

namespace at = asee::gaze_record;

/// What is painted, by looking at the picture.
class TestCalibrationScreen : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void intro_shows_nine_points_and_a_box_for_the_eyes();
    void orange_circle_follows_the_eyes();
    void target_shrinks_with_the_progress_data();
    void target_shrinks_with_the_progress();
    void target_moves_to_the_next_point();
    void gaze_dot_tells_the_fixation_data();
    void gaze_dot_tells_the_fixation();
    void places_far_outside_are_harmless();

private:
    [[nodiscard]] QColor at(int x, int y);
    /// How far the colour reaches to the right of the place.
    [[nodiscard]] int reach(const QColor &colour, int x, int y);
    /// Has a calibration begun, as the worker does.
    void calibrateAt(FractionPoint point, FractionPoint next);

    std::unique_ptr<CalibrationWidget> screen_;
};

namespace {

const QColor background(0x33, 0x33, 0x33);
const QColor ring(0, 0, 0);
const QColor dot(0, 244, 0);
const QColor orange(255, 128, 0);

}  // namespace

void TestCalibrationScreen::init() {
    screen_ = std::make_unique<CalibrationWidget>();
    screen_->resize(1920, 1200);
    screen_->show();
}

QColor TestCalibrationScreen::at(int x, int y) {
    return screen_->grab().toImage().pixelColor(x, y);
}

int TestCalibrationScreen::reach(const QColor &colour, int x, int y) {
    const QImage picture = screen_->grab().toImage();
    int length = 0;
    while (picture.pixelColor(x + length, y) == colour)
        ++length;
    return length;
}

void TestCalibrationScreen::calibrateAt(FractionPoint point, FractionPoint next) {
    screen_->showCalibration();
    screen_->showPoint(point, next);
}

void TestCalibrationScreen::intro_shows_nine_points_and_a_box_for_the_eyes() {
    const QImage picture = screen_->grab().toImage();
    for (const int x : {288, 960, 1632}) {
        for (const int y : {180, 600, 1020}) {
            const bool inBox = x == 960 && y == 600;
            QCOMPARE(picture.pixelColor(x, y), inBox ? QColor(99, 99, 99) : dot);
            QCOMPARE(picture.pixelColor(x + 3, y), inBox ? QColor(99, 99, 99) : dot);
            QCOMPARE(picture.pixelColor(x + 33, y), inBox ? QColor(99, 99, 99) : ring);
            QCOMPARE(picture.pixelColor(x, y - 33), inBox ? QColor(99, 99, 99) : ring);
            QCOMPARE(picture.pixelColor(x + 36, y), inBox ? QColor(99, 99, 99) : background);
        }
    }
    for (const int side : {-120, 119})
        QCOMPARE(picture.pixelColor(960 + side, 600 + side), QColor(99, 99, 99));
    for (const int side : {-121, 120})
        QCOMPARE(picture.pixelColor(960 + side, 600 + side), background);

    // The prompt stands below, in the middle of what is left from 240 on.
    const QImage text = picture.copy(600, 770, 720, 20);
    QImage nothing(text.size(), text.format());
    nothing.fill(background);
    QVERIFY(text != nothing);
}

void TestCalibrationScreen::orange_circle_follows_the_eyes() {
    TestRecord record;
    record.set(at::leftEyeFlags, 1).setPoint(at::leftEye, 0.25F, 0.25F);
    record.set(at::rightEyeFlags, 1).setPoint(at::rightEye, 0.75F, 0.25F);
    screen_->takeGaze(GazeRecord(record.data()));
    QCOMPARE(at(960, 344), orange);  // 88 above a picture of 1280 x 1024
    QVERIFY(qAbs(reach(orange, 960, 344) - 100) <= 1);
    record.set(at::rightEyeFlags, 0);
    screen_->takeGaze(GazeRecord(record.data()));
    QCOMPARE(at(640, 344), orange);
    QVERIFY(at(960, 344) != orange);
}

void TestCalibrationScreen::target_shrinks_with_the_progress_data() {
    QTest::addColumn<int>("percent");
    QTest::addColumn<int>("radius");
    QTest::newRow("begin") << 0 << 35;
    QTest::newRow("half way") << 50 << 20;
    QTest::newRow("end") << 100 << 5;
    QTest::newRow("beyond the end") << 2147483647 << 5;
    QTest::newRow("below the begin") << -2147483647 << 35;
}

void TestCalibrationScreen::target_shrinks_with_the_progress() {
    QFETCH(int, percent);
    QFETCH(int, radius);
    calibrateAt({0.25F, 0.5F}, {0.75F, 0.5F});
    screen_->on_calib_progress(percent);
    QCOMPARE(at(480, 600), dot);
    QVERIFY(reach(dot, 480, 600) >= 4);
    QCOMPARE(at(480 + radius + 1, 600), background);
    if (radius > 5)
        QCOMPARE(at(480 + radius - 2, 600), ring);
    QCOMPARE(at(960, 180), background);  // no other point, no box
}

void TestCalibrationScreen::target_moves_to_the_next_point() {
    calibrateAt({0.25F, 0.5F}, {0.75F, 0.25F});
    screen_->on_calib_move_point(0.5F);
    QCOMPARE(at(960, 450), dot);
    screen_->on_calib_move_point(0.5F);  // of what is left
    QCOMPARE(at(1200, 375), dot);
}

void TestCalibrationScreen::gaze_dot_tells_the_fixation_data() {
    QTest::addColumn<int>("state");
    QTest::addColumn<QColor>("colour");
    QTest::addColumn<int>("radius");
    QTest::newRow("1") << 1 << QColor(0, 255, 0) << 20;
    QTest::newRow("3") << 3 << QColor(255, 0, 0) << 10;
    QTest::newRow("any other, beside the eyes' circle") << 2 << orange << 10;
}

void TestCalibrationScreen::gaze_dot_tells_the_fixation() {
    QFETCH(int, state);
    QFETCH(QColor, colour);
    QFETCH(int, radius);
    screen_->setShowGaze(true);
    TestRecord record;
    record.set(at::leftGazeFlags, 1).setPoint(at::leftGaze, 0.25F, 0.25F).set(at::fixationState, state);
    screen_->takeGaze(GazeRecord(record.data()));
    QCOMPARE(at(480, 300), colour);
    QVERIFY(qAbs(reach(colour, 480, 300) - radius) <= 1);
}

void TestCalibrationScreen::places_far_outside_are_harmless() {
    TestRecord record;
    record.set(at::leftEyeFlags, 1).setPoint(at::leftEye, 1e30F, -1e30F);
    record.set(at::leftGazeFlags, 1).setPoint(at::leftGaze, -3e38F, 3e38F);
    screen_->takeGaze(GazeRecord(record.data()));
    screen_->setShowGaze(true);
    screen_->takeGaze(GazeRecord(record.data()));
    QCOMPARE(at(5, 5), background);
}

OCELA_TEST(TestCalibrationScreen)
#include "tst_calibration_screen.moc"
