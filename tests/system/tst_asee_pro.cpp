#include "support/test_main.h"
#include "system/desktop.h"
#include "system/program.h"
#include "system/record_file.h"
#include "system/timeout.h"

#include <QDir>
#include <QFile>

namespace {

constexpr QRgb gazeDot = 0xff00ff00;
constexpr QRgb targetDot = 0xff00f400;
constexpr QRgb eyeCircle = 0xffff8000;

/// Returns whether the window shows a camera image. Nothing else in it has so many grey pixels.
bool showsCamera(const QImage &window) {
    int pixels = 0;
    for (int grey = 0x30; grey < 0xb0; ++grey)
        pixels += desktop::count(qRgb(grey, grey, grey), window);
    return pixels >= 20000;
}

}  // namespace

/// The program with a simulated aSee Pro library.
class TestAseeProSession : public ProgramTest {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void calibrates_nine_points_and_records_the_gaze();
    void closes_while_the_library_still_calls_back();

private:
    void giveCoefficients();
    void startCalibration();
    void checkRecordFile();
    /// Waits until the window has changed several times, as it does while the device sends data.
    [[nodiscard]] bool waitForNewPictures();
    [[nodiscard]] QString coefficientFile() const { return home_->dataFolder() + "/coefficient.dat"; }
    [[nodiscard]] QByteArray screen() const { return program_->window("^Calibration$"); }
    [[nodiscard]] bool calibrationShows(QRgb colour) const {
        return desktop::count(colour, desktop::screenshot(screen().toUInt())) > 0;
    }
};

void TestAseeProSession::init() {
    ProgramTest::init();
    home_->writeSettings({{"SelectedTracker", "aSee Pro"}, {"Language", "en_US"}});
    // Without its library, the EyeTech tracker prints a line every 10 ms.
    program_->setVariable("LD_LIBRARY_PATH", OCELA_ASEE_LIBRARY_FOLDER ":" OCELA_EYETECH_LIBRARY_FOLDER);
}

void TestAseeProSession::giveCoefficients() {
    QVERIFY(QDir().mkpath(home_->dataFolder()));
    QCOMPARE(QProcess::execute(OCELA_ASEE_COEFFICIENTS, {coefficientFile()}), 0);
}

void TestAseeProSession::startCalibration() {
    QVERIFY(desktop::click("Calibrate"));
    QTRY_VERIFY_WITH_TIMEOUT(!screen().isEmpty() && calibrationShows(eyeCircle), timeoutMs);
    desktop::save(desktop::screenshot(), "asee-calibration-intro");
    desktop::press("space", screen());
    QTRY_VERIFY_WITH_TIMEOUT(!calibrationShows(eyeCircle) && calibrationShows(targetDot), timeoutMs);
    desktop::save(desktop::screenshot(), "asee-calibration-point");
}

bool TestAseeProSession::waitForNewPictures() {
    constexpr int minChangeCount = 10;
    int changeCount = 0;
    QImage last = program_->picture();
    const auto changedOften = [&] {
        const QImage picture = program_->picture();
        changeCount += picture != last ? 1 : 0;
        last = picture;
        return changeCount >= minChangeCount;
    };
    return QTest::qWaitFor(changedOften, timeoutMs);
}

void TestAseeProSession::checkRecordFile() {
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
    QVERIFY(desktop::choose("gazepoint", "aSee Pro"));
    // A tracker that is not calibrated is not connected, but its camera image is shown.
    QTRY_VERIFY_WITH_TIMEOUT(showsCamera(program_->picture()), timeoutMs);
    QVERIFY(desktop::showsIndicator(desktop::disconnectedColour));

    startCalibration();
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(coefficientFile()), timeoutMs);
    QImage gaze;
    const auto showsGaze = [&] {
        gaze = desktop::screenshot(screen().toUInt());
        return desktop::count(gazeDot, gaze) > 0;
    };
    QVERIFY(QTest::qWaitFor(showsGaze, timeoutMs));
    desktop::save(gaze, "asee-calibration-gaze");
    desktop::press("Escape", screen());
    QTRY_VERIFY_WITH_TIMEOUT(screen().isEmpty(), timeoutMs);

    // It connects when it is selected again.
    QVERIFY(desktop::choose("aSee Pro", "gazepoint"));
    QVERIFY(desktop::choose("gazepoint", "aSee Pro"));
    QTRY_VERIFY_WITH_TIMEOUT(desktop::showsIndicator(desktop::connectedColour) && showsCamera(program_->picture()),
                             timeoutMs);
    desktop::save(program_->picture(), "asee-window");
    QVERIFY(desktop::click("Start record"));
    QVERIFY(waitForNewPictures());
    QVERIFY(desktop::click("Stop record"));
    QTRY_VERIFY_WITH_TIMEOUT(!home_->recordFile().isEmpty(), timeoutMs);
    checkRecordFile();

    checkEnd();
    const QString log = program_->process().log();
    QCOMPARE(log.count("_7i_start_calibration_point: 0 "), 9);
    for (const char *line : {"_7i_compute_calibration: 0", "write coefficient file: 1024", "_7i_start_tracking: 0"})
        QVERIFY2(log.contains(line), line);
    QVERIFY(home_->readSettings().contains("aSee Pro"));
}

void TestAseeProSession::closes_while_the_library_still_calls_back() {
    giveCoefficients();
    program_->setVariable("OCELA_SIM_ASEE_LATE_CALLBACKS_MS", "60000");
    QVERIFY(program_->startWindow());
    QTRY_VERIFY_WITH_TIMEOUT(desktop::showsIndicator(desktop::connectedColour), timeoutMs);
    QVERIFY(waitForNewPictures());
    checkEnd();
}

OCELA_TEST(TestAseeProSession)
#include "tst_asee_pro.moc"
