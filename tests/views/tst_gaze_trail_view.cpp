#include "support/fake_tracker.h"
#include "support/test_main.h"
#include "views/gaze_trail.h"
#include "views/gaze_trail_view.h"

#include <QImage>

using namespace std::chrono_literals;

namespace {

EyeTrackingSample gazeAt(float x, float y) {
    EyeTrackingSample sample;
    sample.valid = true;
    sample.x = x;
    sample.y = y;
    return sample;
}

NumberedSample entryAt(std::chrono::milliseconds time, bool valid = true) {
    NumberedSample entry{1, GazeTrail::Clock::time_point(time), gazeAt(50, 50)};
    entry.sample.valid = valid;
    return entry;
}

/// A palette with only the colours that the view uses.
QPalette paletteOf(const QColor &screen, const QColor &text, const QColor &gaze) {
    QPalette palette;
    palette.setColor(QPalette::Window, screen);
    palette.setColor(QPalette::Base, screen);
    palette.setColor(QPalette::PlaceholderText, text);
    palette.setColor(QPalette::Highlight, gaze);
    return palette;
}

int count(const QImage &image, const QColor &colour) {
    int pixelCount = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            pixelCount += image.pixelColor(x, y) == colour ? 1 : 0;
    }
    return pixelCount;
}

}  // namespace

class TestGazeTrailView : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void trail_joins_saccades_but_not_blinks();
    void trail_fades_and_ends();
    void picture_keeps_the_proportions_of_the_screen_data();
    void picture_keeps_the_proportions_of_the_screen();
    void shows_the_gaze_until_it_is_lost_data();
    void shows_the_gaze_until_it_is_lost();
};

void TestGazeTrailView::trail_joins_saccades_but_not_blinks() {
    GazeTrail trail;
    for (const int ms : {0, 7})
        trail.add(entryAt(std::chrono::milliseconds(ms)));
    trail.add(entryAt(50ms, false));
    trail.add(entryAt(107ms));
    trail.add(entryAt(307ms));
    std::vector<bool> joined;
    for (const GazeTrail::Point &point : trail.points(GazeTrail::Clock::time_point(400ms)))
        joined.push_back(point.isJoined);
    QCOMPARE(joined, (std::vector<bool>{false, true, true, false}));
}

void TestGazeTrailView::trail_fades_and_ends() {
    GazeTrail trail;
    trail.add(entryAt(0ms));
    trail.add(entryAt(500ms));
    const auto points = trail.points(GazeTrail::Clock::time_point(750ms));
    QCOMPARE(points.size(), std::size_t{2});
    QCOMPARE(points[0].freshness, 0.25);
    QCOMPARE(points[1].freshness, 0.75);
    trail.removeOld(GazeTrail::Clock::time_point(1499ms));
    QCOMPARE(trail.points(GazeTrail::Clock::time_point(1499ms)).size(), std::size_t{1});
    trail.removeOld(GazeTrail::Clock::time_point(1500ms));
    QVERIFY(trail.isEmpty());
}

void TestGazeTrailView::picture_keeps_the_proportions_of_the_screen_data() {
    dataColumns<QSize, QRectF, QPointF, QPointF>("screen", "picture", "gaze", "place");
    dataRow("wide", QSize(1600, 400), QRectF(0, 75, 400, 100), QPointF(25, 50), QPointF(100, 125));
    dataRow("upright", QSize(1080, 2160), QRectF(137.5, 0, 125, 250), QPointF(0, 100), QPointF(137.5, 250));
    dataRow("beside the screen", QSize(1600, 1000), QRectF(0, 0, 400, 250), QPointF(-20, 1e9), QPointF(0, 250));
}

void TestGazeTrailView::picture_keeps_the_proportions_of_the_screen() {
    QFETCH(QSize, screen);
    QFETCH(QPointF, gaze);
    const QRectF picture = gaze_trail::screenIn(QRectF(0, 0, 400, 250), screen);
    QTEST(picture, "picture");
    QTEST(gaze_trail::placeOf(gaze, picture), "place");
}

void TestGazeTrailView::shows_the_gaze_until_it_is_lost_data() {
    dataColumns<QColor, QColor>("screen", "text");
    QTest::newRow("light") << QColor(Qt::white) << QColor(Qt::black);
    QTest::newRow("dark") << QColor(Qt::black) << QColor(Qt::white);
}

void TestGazeTrailView::shows_the_gaze_until_it_is_lost() {
    QFETCH(QColor, screen);
    QFETCH(QColor, text);
    FakeTracker tracker, other;
    tracker.setCalibratedArea(0, 0, 200, 100);
    GazeTrailView view;
    view.setPalette(paletteOf(screen, text, Qt::red));
    view.resize(208, 108);  // an area of 200 x 100 inside of the frame
    view.setEyetracker(&tracker);
    view.show();
    const auto image = [&] { return view.grab().toImage(); };
    const auto showsText = [&] { return count(image(), text) > 0; };
    QVERIFY(showsText());
    QCOMPARE(image().pixelColor(20, 54), screen);

    // The gaze is drawn at its place, and fades.
    const auto redness = [&](int x, int y) {
        const QColor colour = image().pixelColor(x, y);
        return colour.red() - colour.green();
    };
    const auto showsGaze = [&] {
        tracker.addSample(gazeAt(75, 25));
        return redness(154, 29) > 200;
    };
    QTRY_VERIFY(showsGaze());
    QVERIFY(!showsText());
    QCOMPARE(image().pixelColor(54, 79), screen);

    tracker.addSample(EyeTrackingSample());
    QTRY_VERIFY(redness(154, 29) < 128);
    QTRY_VERIFY(showsText());
    QCOMPARE(image().pixelColor(154, 29), screen);

    tracker.addSample(gazeAt(75, 25));
    QTRY_VERIFY(!showsText());
    view.setEyetracker(&other);
    QVERIFY2(showsText(), "the gaze of the earlier tracker is not shown");
}

OCELA_TEST(TestGazeTrailView)
#include "tst_gaze_trail_view.moc"
