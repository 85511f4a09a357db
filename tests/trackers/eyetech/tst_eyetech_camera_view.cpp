#include "support/test_main.h"
#include "trackers/eyetech/eyetech_camera_layout.h"
#include "trackers/eyetech/eyetech_camera_view.h"
#include "trackers/eyetech/eyetech_tracker.h"
#include "trackers/eyetech/record_builder.h"
#include "trackers/eyetech/script.h"

#include <QTemporaryDir>

class TestEyetechCameraView : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void distance_chooses_colour_and_size_data();
    void distance_chooses_colour_and_size();
    void frame_fits_into_the_widget_data();
    void frame_fits_into_the_widget();
    void paints_image_and_pupils_data();
    void paints_image_and_pupils();
};

void TestEyetechCameraView::distance_chooses_colour_and_size_data() {
    dataColumns<float, QString, float>("distance", "colour", "factor");
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
    row(59.9F, "#3C0", 0.9265F);
    row(60, "#9C0", 0.925F);
    row(65, "#EE0", 0.85F);
    row(70, "#F90", 0.775F);
    row(75, "#C30", 0.7F);
    row(80, "#C30", 0.7F);
}

void TestEyetechCameraView::distance_chooses_colour_and_size() {
    QFETCH(const float, distance);
    QFETCH(const QString, colour);
    QCOMPARE(eyetech::camera_layout::colourOf(eyetech::camera_layout::rate(distance)), QColor(colour));
    QTEST(eyetech::camera_layout::sizeFactor(distance), "factor");
}

void TestEyetechCameraView::frame_fits_into_the_widget_data() {
    dataColumns<QSize, QRect>("widget", "image");
    QTest::newRow("wider") << QSize(1001, 270) << QRect(244, 0, 512, 270);
    QTest::newRow("taller") << QSize(512, 401) << QRect(0, 65, 512, 270);
    QTest::newRow("truncated to pixels") << QSize(100, 100) << QRect(0, 24, 100, 52);
}

void TestEyetechCameraView::frame_fits_into_the_widget() {
    QFETCH(const QSize, widget);
    const eyetech::camera_layout::Fit fit = eyetech::camera_layout::fit(widget);
    QTEST(QRect(fit.offset, fit.size), "image");
}

void TestEyetechCameraView::paints_image_and_pupils_data() {
    dataColumns<bool, QSize, float, bool, QColor, QColor>("hasFrame", "camera", "pupilX", "clicked", "atPupil",
                                                          "beside");
    const QColor nothing(Qt::transparent), grey(100, 100, 100), good("#3C0");
    const QSize camera(2048, 1080);
    QTest::newRow("before the first frame") << false << camera << 512.0F << false << nothing << nothing;
    QTest::newRow("without image") << true << QSize(0, 0) << 512.0F << false << nothing << nothing;
    QTest::newRow("image below the minimum width") << true << QSize(9, 1080) << 512.0F << false << nothing << nothing;
    QTest::newRow("pupil on the image") << true << camera << 512.0F << false << good << grey;
    QTest::newRow("image with another aspect ratio") << true << QSize(10, 10) << 512.0F << false << good << grey;
    QTest::newRow("pupil on the image, after a click") << true << camera << 512.0F << true << good << grey;
    QTest::newRow("pupil position overflows") << true << camera << 3e38F << false << grey << grey;
}

void TestEyetechCameraView::paints_image_and_pupils() {
    QFETCH(const QSize, camera);
    QFETCH(const float, pupilX);
    QFETCH(const bool, hasFrame);
    QFETCH(const bool, clicked);
    freshScript();
    const QTemporaryDir folder;
    EyetechGrabber tracker(folder.path(), nullptr);
    EyetechVideoDisplayWidget view(&tracker);
    view.resize(612, 270);  // with bands of 50 pixels at the sides

    const std::vector<unsigned char> pixels(2048UL * 1080UL, 100);
    QLFrameData frame;
    putImage(frame.record, pixels.data(), camera.width(), camera.height());
    put(frame.record, 328, true);
    put(frame.record, 336, pupilX);
    put(frame.record, 340, 540.0F);
    put(frame.record, 652, 55.0F);
    frame.copyImage();
    if (hasFrame)
        Q_EMIT tracker.newFrame(frame);
    QCoreApplication::processEvents();
    if (clicked)
        QTest::mouseClick(&view, Qt::LeftButton);

    QImage picture(view.size(), QImage::Format_ARGB32);
    picture.fill(Qt::transparent);
    view.render(&picture, QPoint(), QRegion(), QWidget::RenderFlags());
    // A click makes a ring of the dot.
    QTEST(picture.pixelColor(50 + 128 + (clicked ? 24 : 22), 135), "atPupil");
    QTEST(picture.pixelColor(50 + 128 + (clicked ? 0 : 26), 135), "beside");
    QCOMPARE(picture.pixelColor(48, 135), QColor(Qt::transparent));
}

OCELA_TEST(TestEyetechCameraView)
#include "tst_eyetech_camera_view.moc"
