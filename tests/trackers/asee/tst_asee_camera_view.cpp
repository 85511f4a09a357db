#include "asee_fixture.h"
#include "support/test_main.h"
#include "trackers/asee/asee_camera_view.h"
#include "trackers/asee/asee_tracker.h"

#include <QTemporaryDir>
#include <thread>

class TestAseeProPreviewWidget : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void shows_each_image_centred_and_black_before_the_first();
    void copies_no_image_while_hidden();
    void refreshes_do_not_accumulate();
    void invalid_images_are_ignored_data();
    void invalid_images_are_ignored();
    void images_are_read_while_others_arrive();
    void works_without_a_tracker();

private:
    bool eventFilter(QObject *, QEvent *event) override {
        refreshes_ += event->type() == QEvent::MetaCall ? 1 : 0;
        return false;
    }

    int refreshes_ = 0;
    QTemporaryDir folder_;
    std::unique_ptr<aSeePro> tracker_;
};

namespace {

void send(int width, int height, int shade, int bytes) {
    const std::vector<unsigned char> pixels(static_cast<std::size_t>(qMax(bytes, 1)),
                                            static_cast<unsigned char>(shade));
    std::thread([&] { library().image(pixels.data(), bytes, width, height, 0, library().context); }).join();
}

void send(int width, int height, int shade) {
    send(width, height, shade, width * height);
}

}  // namespace

void TestAseeProPreviewWidget::init() {
    library().reset();
    writeFile(folder_.filePath("coefficient.dat"), "coefficients");
    tracker_ = std::make_unique<aSeePro>(folder_.path(), nullptr);
    QVERIFY(tracker_->start());
}

void TestAseeProPreviewWidget::shows_each_image_centred_and_black_before_the_first() {
    const std::unique_ptr<QWidget> view(tracker_->createViewWidget());
    view->setStyleSheet("background: red");
    view->resize(400, 400);
    view->show();
    const auto colourAt = [&](int x, int y) { return view->grab().toImage().pixelColor(x, y); };
    QCOMPARE(colourAt(399, 41), QColor(Qt::black));  // 100 x 80 pixels, scaled to 400 x 320
    QCOMPARE(colourAt(200, 38), QColor(Qt::red));

    const QColor grey(0xAA, 0xAA, 0xAA);
    send(10, 5, 0xAA);  // the length of a line is not a multiple of four
    QTRY_COMPARE_WITH_TIMEOUT(colourAt(1, 101), grey, maxWaitMs);
    QCOMPARE(colourAt(398, 298), grey);
    QCOMPARE(colourAt(200, 98), QColor(Qt::red));
    QCOMPARE(colourAt(200, 302), QColor(Qt::red));

    view->resize(200, 400);
    QCOMPARE(colourAt(100, 148), QColor(Qt::red));
    QCOMPARE(colourAt(100, 152), grey);
}

void TestAseeProPreviewWidget::copies_no_image_while_hidden() {
    const auto shade = [this] { return qGray(tracker_->previewImage().pixel(0, 0)); };
    send(8, 8, 1);
    QVERIFY(tracker_->previewImage().isNull());
    const std::unique_ptr<QWidget> view(tracker_->createViewWidget());
    for (const int round : {2, 3}) {
        view->show();
        send(8, 8, round);
        QCOMPARE(shade(), round);
        view->hide();
        send(8, 8, 9);
        QCOMPARE(shade(), round);
    }
}

void TestAseeProPreviewWidget::refreshes_do_not_accumulate() {
    const std::unique_ptr<QWidget> view(tracker_->createViewWidget());
    view->show();
    view->installEventFilter(this);
    for (int shade = 1; shade <= 20; ++shade)
        send(8, 8, shade);
    QTRY_COMPARE_WITH_TIMEOUT(view->grab().toImage().pixelColor(view->rect().center()), QColor(20, 20, 20), maxWaitMs);
    QCOMPARE(refreshes_, 1);
}

void TestAseeProPreviewWidget::invalid_images_are_ignored_data() {
    dataColumns<int, QSize>("bytes", "size");
    QTest::newRow("no width") << 64 << QSize(0, 8);
    QTest::newRow("negative on both sides") << 64 << QSize(-8, -8);
    QTest::newRow("more pixels than bytes") << 64 << QSize(8, 9);
    QTest::newRow("pixel count overflows") << 64 << QSize(0x7fffffff, 0x7fffffff);
    QTest::newRow("negative bytes") << -1 << QSize(8, 8);
}

void TestAseeProPreviewWidget::invalid_images_are_ignored() {
    QFETCH(int, bytes);
    QFETCH(QSize, size);
    tracker_->setPreviewEnabled(true);
    send(1280, 1024, 7);
    send(size.width(), size.height(), 8, bytes);
    QVERIFY(tracker_->previewImage().isNull());
    library().image(nullptr, 64, 8, 8, 0, library().context);
    QVERIFY(tracker_->previewImage().isNull());

    send(1280, 1024, 7);
    QTest::ignoreMessage(QtWarningMsg, "Camera images of 1312000 bytes are not shown: the maximum is 1310720 bytes");
    for (int i = 0; i < 3; ++i)
        send(1280, 1025, 8);
    QCOMPARE(tracker_->previewImage().size(), QSize(1280, 1024));
}

void TestAseeProPreviewWidget::images_are_read_while_others_arrive() {
    tracker_->setPreviewEnabled(true);
    send(200, 200, 1);
    std::atomic<bool> running{true};
    std::thread camera([&] {
        while (running) {
            send(200, 200, 1);
            send(300, 300, 2);
        }
    });
    for (int i = 0; i < 200; ++i) {
        const QImage image = tracker_->previewImage();
        QCOMPARE(image.pixel(image.width() - 1, image.height() - 1), image.pixel(0, 0));
    }
    running = false;
    camera.join();
}

void TestAseeProPreviewWidget::works_without_a_tracker() {
    aSeeProPreviewWidget withoutTracker(nullptr);
    aSeeProPreviewWidget withDestroyedTracker(tracker_.get());
    tracker_.reset();
    for (QWidget *view : {&withoutTracker, &withDestroyedTracker}) {
        view->show();
        view->resize(33, 77);
        view->hide();
    }
}

OCELA_TEST(TestAseeProPreviewWidget)
#include "tst_asee_camera_view.moc"
