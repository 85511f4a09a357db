#include "app/gaze_cursor.h"
#include "support/test_main.h"

#include <limits>

Q_DECLARE_METATYPE(gaze_cursor::Gaze)
Q_DECLARE_METATYPE(gaze_cursor::Screen)

class TestGazeCursor : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cursor_is_where_the_person_looks_data();
    void cursor_is_where_the_person_looks();
    void there_is_no_place_without_a_screen();
};

void TestGazeCursor::cursor_is_where_the_person_looks_data() {
    using Unit = EyetrackerInterface::PixelUnit;
    // Full HD, an unscaled screen to its left, and 4K at 200 % below them.
    const std::vector<gaze_cursor::Screen> screens{
        {{0, 0, 1920, 1080}, 1}, {{-1280, 56, 1280, 1024}, 1}, {{0, 1080, 1920, 1080}, 2}};
    dataColumns<std::vector<gaze_cursor::Screen>, gaze_cursor::Gaze, int, QPoint>("screens", "gaze", "screen",
                                                                                  "position");
    const auto row = [&](const char *name, const gaze_cursor::Gaze &gaze, int screen, QPoint position) {
        dataRow(name, screens, gaze, screen, position);
    };
    row("primary screen", {{960, 540}, {0, 0}, Unit::Desktop}, 0, {960, 540});
    row("area inside of the primary screen", {{10, 20}, {100, 200}, Unit::Desktop}, 0, {110, 220});
    row("screen to the left", {{0, 0}, {-1280, 56}, Unit::Device}, 1, {-1280, 56});
    row("scaled screen, desktop pixels", {{960, 540}, {0, 1080}, Unit::Desktop}, 2, {960, 1620});
    row("scaled screen, device pixels", {{1921, 1081}, {0, 1080}, Unit::Device}, 2, {960, 1620});
    row("last device pixel of a scaled screen", {{3839, 2159}, {0, 1080}, Unit::Device}, 2, {1919, 2159});
    row("beyond the left edge of the area", {{-5, 100}, {0, 0}, Unit::Device}, 1, {-5, 100});
    row("beyond all screens", {{-100, -100}, {0, 0}, Unit::Device}, 1, {-100, 56});
    constexpr int max = std::numeric_limits<int>::max();
    row("largest numbers", {{max, max}, {max, max}, Unit::Device}, 2, {1919, 2159});
    row("smallest numbers", {{-max, -max}, {-max, -max}, Unit::Desktop}, 1, {-1280, 56});

    const gaze_cursor::Screen scaled{{0, 0, 911, 512}, 1.5};
    dataRow("scale of 150 %", std::vector<gaze_cursor::Screen>{scaled},
            gaze_cursor::Gaze{{1365, 767}, {0, 0}, Unit::Device}, 0, QPoint(910, 511));
}

void TestGazeCursor::cursor_is_where_the_person_looks() {
    QFETCH(std::vector<gaze_cursor::Screen>, screens);
    QFETCH(gaze_cursor::Gaze, gaze);
    const auto place = gaze_cursor::placeOf(gaze, screens);
    QVERIFY(place);
    QTEST(static_cast<int>(place->screen), "screen");
    QTEST(place->position, "position");
    QVERIFY(screens[place->screen].geometry.contains(place->position));
}

void TestGazeCursor::there_is_no_place_without_a_screen() {
    QVERIFY(!gaze_cursor::placeOf({{1, 1}, {0, 0}, EyetrackerInterface::PixelUnit::Device}, {}));
}

OCELA_TEST(TestGazeCursor)
#include "tst_gaze_cursor.moc"
