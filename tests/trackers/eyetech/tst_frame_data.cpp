#include "support/test_main.h"
#include "trackers/eyetech/frame_data.h"
#include "trackers/eyetech/record_builder.h"

#include <QTest>
#include <limits>
#include <vector>

class TestFrameData : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void image_is_copied_if_it_can_be_data();
    void image_is_copied_if_it_can_be();
    void numbers_that_are_none_read_as_zero();
};

void TestFrameData::image_is_copied_if_it_can_be_data() {
    QTest::addColumn<bool>("hasPixels");
    QTest::addColumn<QSize>("claimed");
    QTest::addColumn<QSize>("copied");
    QTest::addColumn<bool>("lacking");
    constexpr int most = std::numeric_limits<int>::max();
    // Odd width: lines of an image in memory are longer than those of the record.
    QTest::newRow("image") << true << QSize(5, 3) << QSize(5, 3) << false;
    QTest::newRow("none") << false << QSize(0, 0) << QSize() << false;
    QTest::newRow("without pixels") << false << QSize(5, 3) << QSize() << true;
    QTest::newRow("negative width") << true << QSize(-5, 3) << QSize() << true;
    QTest::newRow("negative height") << true << QSize(5, -3) << QSize() << true;
    QTest::newRow("size beyond all cameras") << true << QSize(4097, 1) << QSize() << true;
    QTest::newRow("size beyond all memory") << true << QSize(most, most) << QSize() << true;
}

void TestFrameData::image_is_copied_if_it_can_be() {
    QFETCH(const bool, hasPixels);
    QFETCH(const QSize, claimed);
    QFETCH(const QSize, copied);
    std::vector<unsigned char> pixels(15);
    for (std::size_t i = 0; i < pixels.size(); ++i)
        pixels[i] = static_cast<unsigned char>(10 * i);
    QLFrameData frame;
    putImage(frame.record, hasPixels ? pixels.data() : nullptr, claimed.width(), claimed.height());
    frame.copyImage();
    pixels.assign(pixels.size(), 0);  // the library's next frame
    QCOMPARE(frame.image.size(), frame.image.isNull() ? QSize(0, 0) : copied);
    QCOMPARE(!frame.image.isNull(), copied.isValid());
    QTEST(frame.lacksImage(), "lacking");
    if (!frame.image.isNull())
        QCOMPARE(qGray(frame.image.pixel(4, 2)), 140);
}

void TestFrameData::numbers_that_are_none_read_as_zero() {
    QLFrameData frame;
    put(frame.record, 500, std::numeric_limits<float>::quiet_NaN());
    put(frame.record, 504, std::numeric_limits<float>::infinity());
    QCOMPARE(frame.x(), 0.0F);
    QCOMPARE(frame.y(), 0.0F);
}

OCELA_TEST(TestFrameData)
#include "tst_frame_data.moc"
