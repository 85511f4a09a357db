#include "support/test_main.h"
#include "trackers/eyetech/camera_picture.h"
#include "trackers/eyetech/eyetech_grabber.h"
#include "trackers/eyetech/eyetech_video_display_widget.h"
#include "trackers/eyetech/record_builder.h"
#include "trackers/eyetech/script.h"

#include <QTemporaryDir>
#include <QTest>

class TestCameraPicture : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void distance_chooses_colour_and_size_data();
    void distance_chooses_colour_and_size();
    void frame_fits_into_the_widget_data();
    void frame_fits_into_the_widget();
    void paints_image_and_pupils_data();
    void paints_image_and_pupils();
};

void TestCameraPicture::distance_chooses_colour_and_size_data() {
    QTest::addColumn<float>("distance");
    QTest::addColumn<QString>("colour");
    QTest::addColumn<float>("factor");
    const auto row = [](float distance, const char *colour, float factor) {
        QTest::addRow("%g cm", static_cast<double>(distance)) << distance << QString(colour) << factor;
    };
    row(0, "#C30", 1.3F);
    row(35, "#C30", 1.3F);
    row(35.1F, "#F90", 1.2985F);
    row(40, "#F90", 1.225F);
    row(40.1F, "#EE0", 1.2235F);
    row(45, "#EE0", 1.15F);
    row(45.1F, "#9C0", 1.1485F);
    row(50, "#9C0", 1.075F);
    row(50.1F, "#3C0", 1.0735F);
    row(55, "#3C0", 1.0F);
    row(59.9F, "#3C0", 0.9265F);
    row(60, "#9C0", 0.925F);
    row(65, "#EE0", 0.85F);
    row(70, "#F90", 0.775F);
    row(75, "#C30", 0.7F);
    row(80, "#C30", 0.7F);
}

void TestCameraPicture::distance_chooses_colour_and_size() {
    QFETCH(const float, distance);
    QFETCH(const QString, colour);
    QCOMPARE(camera_picture::colourOf(camera_picture::rate(distance)), QColor(colour));
    QTEST(camera_picture::sizeFactor(distance), "factor");
}

void TestCameraPicture::frame_fits_into_the_widget_data() {
    QTest::addColumn<QSize>("widget");
    QTest::addColumn<QRect>("picture");
    QTest::newRow("same shape") << QSize(2048, 1080) << QRect(0, 0, 2048, 1080);
    QTest::newRow("wider") << QSize(1001, 270) << QRect(244, 0, 512, 270);
    QTest::newRow("higher") << QSize(512, 401) << QRect(0, 65, 512, 270);
    QTest::newRow("cut to whole pixels") << QSize(100, 100) << QRect(0, 24, 100, 52);
}

void TestCameraPicture::frame_fits_into_the_widget() {
    QFETCH(const QSize, widget);
    const camera_picture::Fit fit = camera_picture::fit(widget);
    QTEST(QRect(fit.offset, fit.size), "picture");
    QCOMPARE(fit.scale, fit.size.width() / 2048.0);
}

void TestCameraPicture::paints_image_and_pupils_data() {
    QTest::addColumn<bool>("frameComes");
    QTest::addColumn<QSize>("camera");
    QTest::addColumn<float>("pupilX");
    QTest::addColumn<QColor>("atPupil");
    QTest::addColumn<QColor>("beside");
    const QColor nothing(Qt::transparent), grey(100, 100, 100), good("#3C0");
    const QSize camera(2048, 1080);
    QTest::newRow("before the first frame") << false << camera << 512.0F << nothing << nothing;
    QTest::newRow("without image") << true << QSize(0, 0) << 512.0F << nothing << nothing;
    QTest::newRow("image too narrow to be one") << true << QSize(9, 1080) << 512.0F << nothing << nothing;
    QTest::newRow("pupil on the image") << true << camera << 512.0F << good << grey;
    QTest::newRow("image of another shape") << true << QSize(10, 10) << 512.0F << good << grey;
    QTest::newRow("pupil beyond all pixels") << true << camera << 3e38F << grey << grey;
}

void TestCameraPicture::paints_image_and_pupils() {
    QFETCH(const bool, frameComes);
    QFETCH(const QSize, camera);
    QFETCH(const float, pupilX);
    freshScript();
    const QTemporaryDir folder;
    EyetechGrabber tracker(folder.path(), nullptr);
    EyetechVideoDisplayWidget view(&tracker);
    view.resize(612, 270);  // bands of 50 pixels at the sides

    const std::vector<unsigned char> pixels(2048UL * 1080UL, 100);
    QLFrameData frame;
    putImage(frame.record, pixels.data(), camera.width(), camera.height());
    put(frame.record, 328, true);
    put(frame.record, 336, pupilX);
    put(frame.record, 340, 540.0F);
    put(frame.record, 652, 55.0F);
    frame.copyImage();
    if (frameComes)
        Q_EMIT tracker.newFrame(frame);
    QCoreApplication::processEvents();

    QImage shown(view.size(), QImage::Format_ARGB32);
    shown.fill(Qt::transparent);
    view.render(&shown, QPoint(), QRegion(), QWidget::RenderFlags());
    QTEST(shown.pixelColor(50 + 128 + 22, 135), "atPupil");
    QTEST(shown.pixelColor(50 + 128 + 26, 135), "beside");
    QCOMPARE(shown.pixelColor(48, 135), QColor(Qt::transparent));
}

OCELA_TEST(TestCameraPicture)
#include "tst_camera_picture.moc"
