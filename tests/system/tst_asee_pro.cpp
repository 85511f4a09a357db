#include "support/test_main.h"
#include "system/desktop.h"
#include "system/patience.h"
#include "system/program.h"
#include "system/record_file.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTest>

namespace {

constexpr QRgb green = 0xff33cc00;
constexpr QRgb red = 0xffcc3300;
constexpr QRgb gazeDot = 0xff00ff00;
constexpr QRgb targetDot = 0xff00f400;
constexpr QRgb eyeCircle = 0xffff8000;

/// Whether a camera image is to be seen, which nothing else in the window is as large and as grey as.
bool showsCamera(const QImage &window) {
    int pixels = 0;
    for (int grey = 0x30; grey < 0xb0; ++grey)
        pixels += desktop::count(qRgb(grey, grey, grey), window);
    return pixels >= 20000;
}

}  // namespace

/// The program with the aSee Pro vendor's library, which a simulated one stands in for.
class TestAseeProSession : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void calibrates_nine_points_and_records_the_gaze();
    void lives_with_what_the_device_does_data();
    void lives_with_what_the_device_does();
    void calibration_that_waits_can_be_left();

private:
    void giveCoefficients();
    void startCalibration();
    void checkRecord();
    /// Waits until the window has shown a number of new pictures, as it does while the device delivers.
    [[nodiscard]] bool showsNewPictures();
    [[nodiscard]] QString coefficientFile() const { return home_->dataFolder() + "/coefficient.dat"; }
    [[nodiscard]] QByteArray screen() const { return program_->window("^Calibration$"); }
    [[nodiscard]] bool calibrationShows(QRgb colour) const {
        return desktop::count(colour, desktop::screenshot(screen().toUInt())) > 0;
    }

    std::unique_ptr<Home> home_;
    std::unique_ptr<Program> program_;
};

void TestAseeProSession::init() {
    home_ = std::make_unique<Home>();
    program_ = std::make_unique<Program>(*home_);
    home_->writeSettings({{"SelectedTracker", "aSee Pro"}, {"Language", "en_US"}});
    // Without its library the EyeTech tracker prints so much that a slow test would lose lines.
    program_->setVariable("LD_LIBRARY_PATH", OCELA_ASEE_LIBRARY_FOLDER ":" OCELA_EYETECH_LIBRARY_FOLDER);
}

void TestAseeProSession::cleanup() {
    program_.reset();
}

void TestAseeProSession::giveCoefficients() {
    QVERIFY(QDir().mkpath(home_->dataFolder()));
    QCOMPARE(QProcess::execute(OCELA_ASEE_COEFFICIENTS, {coefficientFile()}), 0);
}

void TestAseeProSession::startCalibration() {
    // The window stands in the corner of the screen; the camera's image, which is tedious to search, is left out.
    const auto button = [this] { return desktop::find("Calibrate", program_->picture().copy(0, 0, 520, 180)); };
    QTRY_VERIFY_WITH_TIMEOUT(!button().isEmpty(), patienceMs);
    desktop::click(button().center());
    QTRY_VERIFY_WITH_TIMEOUT(!screen().isEmpty() && calibrationShows(eyeCircle), patienceMs);
    desktop::keep(desktop::screenshot(), "asee-calibration-intro");
    desktop::press("space", screen());
    QTRY_VERIFY_WITH_TIMEOUT(!calibrationShows(eyeCircle) && calibrationShows(targetDot), patienceMs);
    desktop::keep(desktop::screenshot(), "asee-calibration-point");
}

bool TestAseeProSession::showsNewPictures() {
    int awaited = 10;
    QImage last = program_->picture();
    const auto seen = [&] {
        const QImage picture = program_->picture();
        awaited -= picture != last ? 1 : 0;
        last = picture;
        return awaited <= 0;
    };
    return QTest::qWaitFor(seen, patienceMs);
}

void TestAseeProSession::checkRecord() {
    const RecordFile record(home_->recordFile());
    QVERIFY(record.rows.size() > 20);
    int valid = 0;
    for (const QStringList &row : record.rows) {
        QCOMPARE(row.size(), 23);
        QCOMPARE(row.mid(0, 2), QList<QString>({"0", "0"}));
        if (row[2] != "1")
            continue;
        ++valid;
        QCOMPARE(row[5].toInt(), static_cast<int>(1920 * row[3].toFloat() / 100));
        QCOMPARE(row[6].toInt(), static_cast<int>(1080 * row[4].toFloat() / 100));
        QVERIFY2(row[12].toFloat() + row[19].toFloat() > 1, qPrintable(row.join(',')));
    }
    QVERIFY(valid > record.rows.size() / 4);
}

void TestAseeProSession::calibrates_nine_points_and_records_the_gaze() {
    home_->writeSettings({{"SelectedTracker", "gazepoint"}, {"Language", "en_US"}});
    program_->setVariable("OCELA_SIM_ASEE_POINT_MS", "600");
    QVERIFY(program_->startWindow());
    QVERIFY(desktop::click("gazepoint"));
    QVERIFY(desktop::click("aSee Pro"));
    // Nobody has calibrated it yet, but its camera sees.
    QTRY_VERIFY_WITH_TIMEOUT(showsCamera(program_->picture()), patienceMs);
    QVERIFY(desktop::showsIndicator(red));

    startCalibration();
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(coefficientFile()), patienceMs);
    QImage gaze;
    const auto showsGaze = [&] {
        gaze = desktop::screenshot(screen().toUInt());
        return desktop::count(gazeDot, gaze) > 0;
    };
    QVERIFY(QTest::qWaitFor(showsGaze, patienceMs));
    desktop::keep(gaze, "asee-calibration-gaze");
    desktop::press("Escape", screen());
    QTRY_VERIFY_WITH_TIMEOUT(screen().isEmpty(), patienceMs);

    // Chosen anew it is connected.
    QVERIFY(desktop::click("aSee Pro"));
    QVERIFY(desktop::click("gazepoint"));
    QVERIFY(desktop::click("gazepoint"));
    QVERIFY(desktop::click("aSee Pro"));
    QTRY_VERIFY_WITH_TIMEOUT(desktop::showsIndicator(green) && showsCamera(program_->picture()), patienceMs);
    desktop::keep(program_->picture(), "asee-window");
    QVERIFY(desktop::click("Start record"));
    QVERIFY(showsNewPictures());
    QVERIFY(desktop::click("Stop record"));
    QTRY_VERIFY_WITH_TIMEOUT(!home_->recordFile().isEmpty(), patienceMs);
    checkRecord();

    QCOMPARE(program_->close(), 0);
    QCOMPARE(program_->complaints(), QStringList());
    const QString log = program_->process().log();
    QCOMPARE(log.count("_7i_start_calibration_point: 0 "), 9);
    for (const char *line : {"_7i_compute_calibration: 0", "write coefficient file: 1024", "_7i_start_tracking: 0"})
        QVERIFY2(log.contains(line), line);
    QVERIFY(home_->readSettings().contains("aSee Pro"));
}

void TestAseeProSession::lives_with_what_the_device_does_data() {
    QTest::addColumn<QString>("variable");
    QTest::addColumn<QString>("value");
    QTest::addColumn<bool>("connected");
    QTest::addColumn<QString>("text");       // in the window
    QTest::addColumn<QString>("complaint");  // in the log, once
    const QString none;
    QTest::newRow("cannot be reached") << "OCELA_SIM_ASEE_CONNECT_ERROR"
                                       << "7" << false << "code: 7" << none;
    QTest::newRow("sends nothing in place of images and records")
        << "OCELA_SIM_ASEE_FAULT"
        << "null-image,null-records" << true << "true" << none;
    QTest::newRow("sends images that are too large") << "OCELA_SIM_ASEE_IMAGE"
                                                     << "2000x1000" << true << "true"
                                                     << "Camera images of 2000000 bytes are not shown";
    QTest::newRow("goes on when it is stopped") << "OCELA_SIM_ASEE_LATE_CALLBACKS_MS"
                                                << "60000" << true << "true" << none;
}

void TestAseeProSession::lives_with_what_the_device_does() {
    QFETCH(QString, text);
    QFETCH(QString, complaint);
    QFETCH(bool, connected);
    QFETCH(QString, variable);
    QFETCH(QString, value);
    giveCoefficients();
    program_->setVariable(variable, value);
    program_->start();
    if (!text.isEmpty())
        QVERIFY(desktop::waitFor(text));
    if (!connected && !text.isEmpty()) {
        desktop::keep(desktop::screenshot(), "asee-connect-error");
        desktop::press("Return", program_->window("^others error!!!$"));
    }
    QTRY_VERIFY_WITH_TIMEOUT(!program_->window().isEmpty(), patienceMs);
    QTRY_VERIFY_WITH_TIMEOUT(desktop::showsIndicator(connected ? green : red), patienceMs);
    QVERIFY(!connected || showsNewPictures());
    QCOMPARE(program_->close(), 0);
    const QStringList complaints = program_->complaints();
    QCOMPARE(complaints.size(), complaint.isEmpty() ? 0 : 1);
    QVERIFY(complaint.isEmpty() || complaints.first().contains(complaint));
}

void TestAseeProSession::calibration_that_waits_can_be_left() {
    program_->setVariable("OCELA_SIM_ASEE_FAULT", "endless-point");
    QVERIFY(program_->startWindow());
    startCalibration();
    desktop::press("Escape", screen());
    QTRY_VERIFY_WITH_TIMEOUT(screen().isEmpty(), patienceMs);
    startCalibration();
    desktop::requestClose(screen().toUInt());
    QTRY_VERIFY_WITH_TIMEOUT(screen().isEmpty(), patienceMs);
    startCalibration();
    QCOMPARE(program_->close(), 0);
    QCOMPARE(program_->complaints(), QStringList());
    QCOMPARE(program_->process().log().count("_7i_cancel_calibration"), 3);
    QVERIFY(!QFile::exists(coefficientFile()));
}

OCELA_TEST(TestAseeProSession)
#include "tst_asee_pro.moc"
