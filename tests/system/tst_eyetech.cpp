#include "support/file_content.h"
#include "support/test_main.h"
#include "system/desktop.h"
#include "system/program.h"
#include "system/record_file.h"
#include "system/timeout.h"

#include <QDir>
#include <QElapsedTimer>

namespace {

constexpr QRgb movingTarget = 0xff115599;
constexpr QRgb pupilAt62cm = 0xff99cc00;
constexpr QRgb outline = 0xffffffff;

constexpr int recordingMs = 1000;
constexpr int unpluggedMs = 3000;

// Positions on the second screen, which is the one to be calibrated.
constexpr QPoint targets[] = {{512, 384}, {102, 76}, {921, 76}, {921, 691}, {102, 691}};
constexpr QPoint saveButton(306, 382);
constexpr QPoint recalibrateButton(714, 382);

}  // namespace

/// The program with a simulated EyeTech library.
class TestEyetechSession : public ProgramTest {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void first_start_shows_calibrates_and_records();
    void recording_continues_when_the_device_is_plugged_in_again();
    void closes_while_the_device_blocks();
    void runs_without_standard_streams();

private:
    void startCalibration();
    void checkRecordFile();
    [[nodiscard]] QByteArray screen() const { return program_->window("^Calibration$"); }
    [[nodiscard]] QImage picture() const { return desktop::screenshot(screen().toUInt()); }
    [[nodiscard]] bool showsScores() const;
    [[nodiscard]] bool showsTarget() const {
        return !screen().isEmpty() && desktop::count(movingTarget, picture()) > 0;
    }
};

void TestEyetechSession::init() {
    create(QString());
    program_->setVariable("LD_LIBRARY_PATH", OCELA_EYETECH_LIBRARY_FOLDER);
    program_->setVariable("OCELA_SIM_BLINK_INTERVAL", "0");
    QVERIFY(QDir().mkpath(home_->dataFolder()));
    QVERIFY(writeFile(home_->dataFolder() + "/EyeTechSettings.xml",
                      "<settings version=\"1\"><property name=\"CalibrationTimeMs\">1000</property></settings>"));
}

void TestEyetechSession::startCalibration() {
    QVERIFY(desktop::click("Calibrate"));
    QTRY_VERIFY_WITH_TIMEOUT(showsTarget(), timeoutMs);
}

bool TestEyetechSession::showsScores() const {
    const QImage shown = picture();
    return std::all_of(std::begin(targets), std::end(targets), [&](QPoint target) {
        return shown.valid(target) && shown.pixel(target + QPoint(0, 17)) == outline;
    });
}

void TestEyetechSession::checkRecordFile() {
    const RecordFile record(home_->recordFile());
    QVERIFY(record.rows.size() > 5);
    for (const QStringList &row : record.rows) {
        QCOMPARE(row.size(), 23);
        QCOMPARE(row[2], "1");
        for (const int x : {3, 8, 15})
            QCOMPARE(row[x + 2].toInt(), static_cast<int>(1024 * row[x].toFloat() / 100));
        for (const int y : {4, 9, 16})
            QCOMPARE(row[y + 2].toInt(), static_cast<int>(768 * row[y].toFloat() / 100));
        QVERIFY2(qAbs(row[7].toFloat() - 62) < 5, qPrintable(row.join(',')));
        // Pupils have diameters of 2 to 8 mm. The left one is in the left half of the camera image.
        QVERIFY2(qAbs(row[12].toFloat() - 5) < 3 && qAbs(row[19].toFloat() - 5) < 3, qPrintable(row.join(',')));
        QVERIFY2(row[13].toInt() > 0 && row[13].toInt() < 1024 && row[20].toInt() > 1024, qPrintable(row.join(',')));
    }
}

void TestEyetechSession::first_start_shows_calibrates_and_records() {
    QVERIFY(program_->startWindow());
    QVERIFY(!desktop::waitFor("eyetech").isEmpty());
    QTRY_VERIFY_WITH_TIMEOUT(desktop::showsIndicator(desktop::connectedColour), timeoutMs);
    QTRY_VERIFY_WITH_TIMEOUT(desktop::count(pupilAt62cm, program_->picture()) > 500, timeoutMs);
    desktop::save(program_->picture(), "eyetech-window");
    QVERIFY(home_->readSettings().contains("eyetech"));

    QVERIFY(desktop::choose("Screen #1 (1920x1080)", "Screen #2 (1024x768)"));
    startCalibration();
    desktop::save(desktop::screenshot(), "eyetech-calibration-target");
    QTRY_VERIFY_WITH_TIMEOUT(showsScores(), timeoutMs);
    desktop::save(picture(), "eyetech-calibration-scores");
    desktop::click(saveButton);
    QTRY_VERIFY_WITH_TIMEOUT(screen().isEmpty(), timeoutMs);

    QVERIFY(desktop::click("Start record"));
    QTest::qWait(recordingMs);
    QVERIFY(desktop::click("Stop record"));
    QTRY_VERIFY_WITH_TIMEOUT(!home_->recordFile().isEmpty(), timeoutMs);
    checkRecordFile();

    startCalibration();
    QTRY_VERIFY_WITH_TIMEOUT(showsScores(), timeoutMs);
    desktop::click(recalibrateButton);
    QTRY_VERIFY_WITH_TIMEOUT(showsTarget(), timeoutMs);
    desktop::press("Escape");
    QTRY_VERIFY_WITH_TIMEOUT(screen().isEmpty(), timeoutMs);
    checkEnd();
}

void TestEyetechSession::recording_continues_when_the_device_is_plugged_in_again() {
    QTemporaryDir folder;
    QFile unplugged(folder.filePath("unplugged"));
    program_->setVariable("OCELA_SIM_EYETECH_UNPLUGGED_FILE", unplugged.fileName());
    QVERIFY(program_->startWindow());
    QTRY_VERIFY_WITH_TIMEOUT(desktop::showsIndicator(desktop::connectedColour), timeoutMs);
    QVERIFY(desktop::click("Start record"));
    QTest::qWait(recordingMs);
    QVERIFY(unplugged.open(QIODevice::WriteOnly));
    QTRY_VERIFY_WITH_TIMEOUT(desktop::showsIndicator(desktop::disconnectedColour), timeoutMs);
    QTest::qWait(unpluggedMs);
    QVERIFY(unplugged.remove());
    QTRY_VERIFY_WITH_TIMEOUT(desktop::showsIndicator(desktop::connectedColour), timeoutMs);
    QTest::qWait(recordingMs);
    QVERIFY(desktop::click("Stop record"));
    QTRY_VERIFY_WITH_TIMEOUT(!home_->recordFile().isEmpty(), timeoutMs);

    const RecordFile record(home_->recordFile());
    int gapCount = 0;
    for (int row = 1; row < record.rows.size(); ++row)
        gapCount += record.timestamp(row) - record.timestamp(row - 1) > unpluggedMs - 100 ? 1 : 0;
    QVERIFY(gapCount >= 1);  // a machine that stops makes more
    QVERIFY(record.timestamp(record.rows.size() - 1) - record.timestamp(0) > unpluggedMs + recordingMs);
    checkEnd();
}

void TestEyetechSession::closes_while_the_device_blocks() {
    program_->setVariable("OCELA_SIM_EYETECH_FRAME_BLOCKS_MS", "60000");
    QVERIFY(program_->startWindow());
    QTRY_VERIFY_WITH_TIMEOUT(desktop::showsIndicator(desktop::connectedColour), timeoutMs);
    QElapsedTimer time;
    time.start();
    QCOMPARE(program_->close(), 0);
    QVERIFY2(time.elapsed() < test_support::longWaitMs, "The program must not wait for the device.");
    QCOMPARE(program_->problems(), QStringList());
}

void TestEyetechSession::runs_without_standard_streams() {
    program_->setVariable("LD_LIBRARY_PATH", QString());  // without its library, the tracker prints all the time
    program_->process().setProgram("sh");
    program_->process().setArguments({"-c", "exec \"$0\" <&- >&-", OCELA_PROGRAM});
    QVERIFY(program_->startWindow());
    QTRY_VERIFY_WITH_TIMEOUT(desktop::showsIndicator(desktop::disconnectedColour), timeoutMs);
    QVERIFY(!desktop::waitFor("Start record").isEmpty());
    QCOMPARE(program_->close(), 0);
    QVERIFY(!program_->process().log().contains("Enumerate"));
}

OCELA_TEST(TestEyetechSession)
#include "tst_eyetech.moc"
