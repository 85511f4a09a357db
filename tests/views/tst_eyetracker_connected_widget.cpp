#include "support/fake_tracker.h"
#include "support/test_main.h"
#include "views/eyetracker_connected_widget.h"

#include <QImage>

class TestEyetrackerConnectedWidget : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void dot_shows_the_connection();
    void dot_is_round_and_its_background_transparent();
    void old_tracker_is_ignored();
};

namespace {

const QColor green(0x33, 0xCC, 0x00);
const QColor red(0xCC, 0x33, 0x00);
const QColor grey(0x99, 0x99, 0x99);

QImage picture(EyetrackerConnectedWidget &widget) {
    QImage image(widget.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    widget.render(&image, QPoint(), QRegion(), QWidget::RenderFlags());
    return image;
}

QColor colourOf(EyetrackerConnectedWidget &widget) {
    return picture(widget).pixelColor(8, 8);
}

}  // namespace

void TestEyetrackerConnectedWidget::dot_shows_the_connection() {
    FakeTracker tracker;
    EyetrackerConnectedWidget widget;
    QCOMPARE(colourOf(widget), grey);
    widget.setEyetracker(&tracker);
    QCOMPARE(colourOf(widget), red);
    tracker.setConnected(true);
    QTRY_COMPARE(colourOf(widget), green);
    tracker.setConnected(false);
    QTRY_COMPARE(colourOf(widget), red);

    tracker.setConnected(true);
    widget.setEyetracker(nullptr);
    QCOMPARE(colourOf(widget), grey);
    widget.setEyetracker(&tracker);
    QCOMPARE(colourOf(widget), green);
}

void TestEyetrackerConnectedWidget::dot_is_round_and_its_background_transparent() {
    EyetrackerConnectedWidget widget;
    const QImage image = picture(widget);
    QCOMPARE(image.size(), QSize(16, 16));
    QCOMPARE(image.pixelColor(0, 0).alpha(), 0);
    QCOMPARE(image.pixelColor(15, 15).alpha(), 0);
    QCOMPARE(image.pixelColor(1, 8), grey);
    QCOMPARE(image.pixelColor(8, 14), grey);
}

void TestEyetrackerConnectedWidget::old_tracker_is_ignored() {
    FakeTracker first, second;
    EyetrackerConnectedWidget widget;
    widget.setEyetracker(&first);
    first.setConnected(true);  // still queued
    widget.setEyetracker(&second);
    first.setConnected(false);
    first.setConnected(true);
    QCoreApplication::processEvents();
    QCOMPARE(colourOf(widget), red);
}

OCELA_TEST(TestEyetrackerConnectedWidget)
#include "tst_eyetracker_connected_widget.moc"
