#include "asee_fixture.h"
#include "support/test_main.h"

/// Tests the painted image.
class TestCalibrationScreen : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void intro_shows_nine_points_and_a_box_for_the_eyes();
    void texts_cover_no_target();
    void target_shrinks_with_the_progress_data();
    void target_shrinks_with_the_progress();
    void target_moves_to_the_next_point();
    void gaze_and_eyes_are_drawn_data();
    void gaze_and_eyes_are_drawn();

private:
    [[nodiscard]] QColor colourAt(int x, int y) { return screen_->grab().toImage().pixelColor(x, y); }

    /// Returns the bounding rectangle of the white pixels, which only texts have.
    [[nodiscard]] QRect textPlace();

    std::unique_ptr<CalibrationWidget> screen_;
};

namespace {

const QColor background(0x33, 0x33, 0x33);
const QColor box(99, 99, 99);
const QColor ring(0, 0, 0);
const QColor dot(0, 244, 0);
const QColor orange(255, 128, 0);

}  // namespace

void TestCalibrationScreen::init() {
    screen_ = std::make_unique<CalibrationWidget>();
    screen_->resize(1920, 1200);
    screen_->show();
}

QRect TestCalibrationScreen::textPlace() {
    const QImage picture = screen_->grab().toImage();
    QRect place;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            if (qGray(picture.pixel(x, y)) > 200)
                place |= QRect(x, y, 1, 1);
        }
    }
    return place;
}

void TestCalibrationScreen::intro_shows_nine_points_and_a_box_for_the_eyes() {
    const QImage picture = screen_->grab().toImage();
    for (const int x : {288, 960, 1632}) {
        for (const int y : {180, 600, 1020}) {
            const bool inBox = x == 960 && y == 600;
            QCOMPARE(picture.pixelColor(x + 3, y), inBox ? box : dot);
            QCOMPARE(picture.pixelColor(x + 6, y), inBox ? box : ring);
            QCOMPARE(picture.pixelColor(x, y - 33), inBox ? box : ring);
            QCOMPARE(picture.pixelColor(x + 36, y), inBox ? box : background);
        }
    }
    for (const int inside : {-120, 119})
        QCOMPARE(picture.pixelColor(960 + inside, 600 + inside), box);
    for (const int outside : {-121, 120})
        QCOMPARE(picture.pixelColor(960 + outside, 600 + outside), background);
    // The prompt is below the box, centred between y = 240 and y = 1320.
    const QImage text = picture.copy(600, 770, 720, 20);
    QVERIFY(text != picture.copy(600, 740, 720, 20));
    // The instruction is below the targets.
    QVERIFY(picture.copy(600, 1115, 720, 25) != picture.copy(600, 1060, 720, 25));
}

void TestCalibrationScreen::texts_cover_no_target() {
    const QSize smallScreen(1366, 768), scaledFullHd(960, 540);
    for (const QSize size : {smallScreen, scaledFullHd}) {
        init();
        screen_->resize(size);
        const auto rowEdge = [size](double y, int side) { return static_cast<int>(size.height() * y) + side * 35; };

        screen_->showCalibration();
        screen_->showPoint(3, {0.5F, 0.85F}, {0.5F, 0.85F});
        QCOMPARE(screen_->hint(), QString("Point 3 of 9"));
        QVERIFY(QRect(QPoint(0, rowEdge(0.85, 1)), QPoint(size.width(), size.height())).contains(textPlace()));

        QTest::keyClick(screen_.get(), Qt::Key_Space);
        asee::CalibrationOutcome outcome;
        outcome.failure = asee::CalibrationOutcome::Failure::Tracking;  // four lines, with the hint for Escape
        outcome.scores = {0.25F, 0.75F};
        screen_->setOutcome(outcome);
        screen_->showIntro();
        QVERIFY(QRect(QPoint(0, rowEdge(0.15, 1)), QPoint(size.width(), rowEdge(0.5, -1))).contains(textPlace()));
    }
}

void TestCalibrationScreen::target_shrinks_with_the_progress_data() {
    dataColumns<int, int>("percent", "radius");
    QTest::newRow("half") << 50 << 20;
    QTest::newRow("more than 100 percent") << 2147483647 << 5;
    QTest::newRow("less than 0 percent") << -2147483647 << 35;
}

void TestCalibrationScreen::target_shrinks_with_the_progress() {
    QFETCH(int, percent);
    QFETCH(int, radius);
    screen_->showCalibration();
    screen_->showPoint(1, {0.25F, 0.5F}, {0.75F, 0.5F});
    screen_->on_calib_progress(percent);
    QCOMPARE(colourAt(480, 600), dot);
    QCOMPARE(colourAt(480 + radius - 2, 600), radius > 5 ? ring : dot);
    QCOMPARE(colourAt(480 + radius + 1, 600), background);
    QCOMPARE(colourAt(960, 180), background);  // no other point, no box
}

void TestCalibrationScreen::target_moves_to_the_next_point() {
    screen_->showCalibration();
    screen_->showPoint(1, {0.25F, 0.5F}, {0.75F, 0.25F});
    screen_->on_calib_move_point(0.5F);
    QCOMPARE(colourAt(960, 450), dot);
    screen_->on_calib_move_point(0.5F);  // of the remaining distance
    QCOMPARE(colourAt(1200, 375), dot);

    QShowEvent restored;  // by the window manager
    QSpontaneKeyEvent::setSpontaneous(&restored);
    qApp->notify(screen_.get(), &restored);
    QCOMPARE(colourAt(1200, 375), dot);
}

void TestCalibrationScreen::gaze_and_eyes_are_drawn_data() {
    dataColumns<int, float, QColor, int>("state", "place", "colour", "radius");
    QTest::newRow("state 1") << 1 << 0.25F << QColor(0, 255, 0) << 20;
    QTest::newRow("state 3") << 3 << 0.25F << QColor(255, 0, 0) << 10;
    QTest::newRow("other state, colour of the eyes' circle") << 2 << 0.25F << orange << 10;
    QTest::newRow("far outside") << 1 << -3e38F << background << 0;
}

void TestCalibrationScreen::gaze_and_eyes_are_drawn() {
    QFETCH(int, state);
    QFETCH(float, place);
    QFETCH(QColor, colour);
    QFETCH(int, radius);
    TestRecord record;
    record.set(at::leftGazeFlags, 1).setPoint(at::leftGaze, place, place).set(at::fixationState, state);
    record.set(at::leftEyeFlags, 1).setPoint(at::leftEye, 0.5F, place);
    screen_->setShowGaze(true);
    screen_->takeGaze(asee::GazeRecord(record.data()));
    QCOMPARE(colourAt(480 + qMax(radius - 2, 0), 300), colour);
    QCOMPARE(colourAt(480 + radius + 2, 300), background);

    // In an image of 1280 x 1024 pixels with its corner at (320, 88).
    const bool isSeen = radius > 0;
    QCOMPARE(colourAt(960 + 98, 344), isSeen ? orange : background);
    QCOMPARE(colourAt(960 + 102, 344), background);
}

OCELA_TEST(TestCalibrationScreen)
#include "tst_asee_calibration_screen.moc"
