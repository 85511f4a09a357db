#include "asee_fixture.h"
#include "support/test_main.h"
#include "trackers/asee/asee_pro.h"
#include "trackers/asee/asee_pro_preview_widget.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <thread>

class TestAseeProPreviewWidget : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void shows_each_image_centred_and_black_before_the_first();
    void copies_nothing_while_hidden();
    void sizes_that_make_no_sense_show_nothing_data();
    void sizes_that_make_no_sense_show_nothing();
    void too_large_images_are_dropped_with_one_warning();
    void images_may_be_read_while_they_come();
    void is_harmless_without_a_tracker();

private:
    void send(int width, int height, int shade = 0xAA);

    QTemporaryDir folder_;
    std::unique_ptr<aSeePro> tracker_;
};

void TestAseeProPreviewWidget::init() {
    library().reset();
    write(folder_.filePath("coefficient.dat"), "coefficients");
    tracker_ = std::make_unique<aSeePro>(folder_.path(), nullptr);
    QVERIFY(tracker_->start());
}

void TestAseeProPreviewWidget::send(int width, int height, int shade) {
    const QByteArray pixels(width * height, static_cast<char>(shade));
    std::thread([&] {
        library().sendImage(reinterpret_cast<const uchar *>(pixels.constData()), pixels.size(), width, height);
    }).join();
}

void TestAseeProPreviewWidget::shows_each_image_centred_and_black_before_the_first() {
    const std::unique_ptr<QWidget> view(tracker_->createViewWidget());
    view->setStyleSheet("background: red");
    view->resize(400, 400);
    view->show();
    const auto colourAt = [&](int x, int y) { return view->grab().toImage().pixelColor(x, y); };
    QCOMPARE(colourAt(200, 200), QColor(Qt::black));  // 400 x 320 of 100 x 80
    QCOMPARE(colourAt(399, 41), QColor(Qt::black));
    QCOMPARE(colourAt(200, 38), QColor(Qt::red));

    send(10, 5);  // a line of it is no multiple of four
    QTRY_COMPARE(colourAt(200, 200), QColor(0xAA, 0xAA, 0xAA));
    QCOMPARE(colourAt(1, 101), QColor(0xAA, 0xAA, 0xAA));
    QCOMPARE(colourAt(398, 298), QColor(0xAA, 0xAA, 0xAA));
    QCOMPARE(colourAt(200, 98), QColor(Qt::red));
    QCOMPARE(colourAt(200, 302), QColor(Qt::red));

    view->resize(200, 400);
    QCOMPARE(colourAt(100, 148), QColor(Qt::red));
    QCOMPARE(colourAt(100, 152), QColor(0xAA, 0xAA, 0xAA));
}

void TestAseeProPreviewWidget::copies_nothing_while_hidden() {
    const auto shade = [this] { return qGray(tracker_->previewImage().pixel(0, 0)); };
    const QSignalSpy ready(tracker_.get(), &aSeePro::previewImageReady);
    send(8, 8);
    QVERIFY(tracker_->previewImage().isNull());

    const std::unique_ptr<QWidget> view(tracker_->createViewWidget());
    view->show();
    send(8, 8, 1);
    QCOMPARE(shade(), 1);
    view->hide();
    send(8, 8, 2);
    QCOMPARE(shade(), 1);
    view->show();
    send(8, 8, 3);
    QCOMPARE(shade(), 3);
    QCOMPARE(ready.count(), 2);
}

void TestAseeProPreviewWidget::sizes_that_make_no_sense_show_nothing_data() {
    QTest::addColumn<int>("bytes");
    QTest::addColumn<QSize>("size");
    QTest::newRow("no width") << 64 << QSize(0, 8);
    QTest::newRow("negative on both sides") << 64 << QSize(-8, -8);
    QTest::newRow("more pixels than bytes") << 64 << QSize(8, 9);
    QTest::newRow("pixels beyond every integer") << 64 << QSize(0x7fffffff, 0x7fffffff);
    QTest::newRow("no bytes") << 0 << QSize(8, 8);
    QTest::newRow("negative bytes") << -1 << QSize(8, 8);
}

void TestAseeProPreviewWidget::sizes_that_make_no_sense_show_nothing() {
    QFETCH(int, bytes);
    QFETCH(QSize, size);
    tracker_->setPreviewEnabled(true);
    send(8, 8);
    QVERIFY(!tracker_->previewImage().isNull());
    const std::array<unsigned char, 64> pixels{};
    library().sendImage(pixels.data(), bytes, size.width(), size.height());
    QVERIFY(tracker_->previewImage().isNull());
    send(8, 8);
    library().sendImage(nullptr, 64, 8, 8);
    QVERIFY(tracker_->previewImage().isNull());
}

void TestAseeProPreviewWidget::too_large_images_are_dropped_with_one_warning() {
    tracker_->setPreviewEnabled(true);
    send(1280, 1024);
    QTest::ignoreMessage(QtWarningMsg, "Camera images of 1312000 bytes are not shown: there is room for 1310720");
    send(1280, 1025);
    send(1280, 1025);
    QCOMPARE(tracker_->previewImage().size(), QSize(1280, 1024));
}

void TestAseeProPreviewWidget::images_may_be_read_while_they_come() {
    tracker_->setPreviewEnabled(true);
    send(200, 200);
    std::atomic<bool> running{true};
    std::thread camera([&] {
        const std::vector<unsigned char> dark(200 * 200, 1), light(300 * 300, 2);
        while (running) {
            library().sendImage(dark.data(), static_cast<int>(dark.size()), 200, 200);
            library().sendImage(light.data(), static_cast<int>(light.size()), 300, 300);
        }
    });
    for (int i = 0; i < 200; ++i) {
        const QImage image = tracker_->previewImage();
        const QRgb corner = image.pixel(0, 0);
        QCOMPARE(image.pixel(image.width() - 1, image.height() - 1), corner);
    }
    running = false;
    camera.join();
}

void TestAseeProPreviewWidget::is_harmless_without_a_tracker() {
    aSeeProPreviewWidget nothing(nullptr);
    aSeeProPreviewWidget orphan(tracker_.get());
    tracker_.reset();
    for (QWidget *view : {&nothing, &orphan}) {
        view->show();
        view->resize(33, 77);
        view->hide();
    }
}

OCELA_TEST(TestAseeProPreviewWidget)
#include "tst_asee_pro_preview_widget.moc"
