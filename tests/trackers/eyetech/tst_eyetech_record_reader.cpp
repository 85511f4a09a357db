#include "support/test_main.h"
#include "trackers/eyetech/eyetech_record_reader.h"
#include "trackers/eyetech/record_builder.h"

#include <limits>
#include <vector>

class TestFrameData : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void valid_image_is_copied_data();
    void valid_image_is_copied();
    void nan_and_infinity_are_read_as_zero();
};

void TestFrameData::valid_image_is_copied_data() {
    dataColumns<bool, QSize, QSize, bool>("hasPixels", "claimed", "copied", "invalid");
    constexpr int maxInt = std::numeric_limits<int>::max();
    // An odd width, because QImage aligns its lines.
    QTest::newRow("image") << true << QSize(5, 3) << QSize(5, 3) << false;
    QTest::newRow("no image") << false << QSize(0, 0) << QSize() << false;
    QTest::newRow("without pixels") << false << QSize(5, 3) << QSize() << true;
    QTest::newRow("negative width") << true << QSize(-5, 3) << QSize() << true;
    QTest::newRow("negative height") << true << QSize(5, -3) << QSize() << true;
    QTest::newRow("size above the maximum") << true << QSize(4097, 1) << QSize() << true;
    QTest::newRow("size overflows") << true << QSize(maxInt, maxInt) << QSize() << true;
}

void TestFrameData::valid_image_is_copied() {
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
    QTEST(frame.hasInvalidImage(), "invalid");
    if (!frame.image.isNull())
        QCOMPARE(qGray(frame.image.pixel(4, 2)), 140);
}

void TestFrameData::nan_and_infinity_are_read_as_zero() {
    QLFrameData frame;
    put(frame.record, 500, std::numeric_limits<float>::quiet_NaN());
    put(frame.record, 504, std::numeric_limits<float>::infinity());
    QCOMPARE(frame.x(), 0.0F);
    QCOMPARE(frame.y(), 0.0F);
}

OCELA_TEST(TestFrameData)
#include "tst_eyetech_record_reader.moc"
