#include "support/test_main.h"
#include "system/desktop.h"
#include "system/patience.h"
#include "system/program.h"
#include "system/record_file.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTest>

namespace {

constexpr QRgb green = 0xff33cc00;
constexpr QRgb red = 0xffcc3300;
constexpr QRgb movingTarget = 0xff115599;
constexpr QRgb pupilAt62cm = 0xff99cc00;
constexpr QRgb outline = 0xffffffff;

/// How long a record lasts, and how long something that must not happen has time to.
constexpr int aWhileMs = 1000;

// Of the second screen, which is the one that is calibrated.
constexpr QPoint targets[] = {{512, 384}, {102, 76}, {921, 76}, {921, 691}, {102, 691}};
constexpr QPoint saveButton(306, 382);
constexpr QPoint recalibrateButton(714, 382);

}  // namespace

/// The program with the EyeTech vendor's library, which a simulated one stands in for.
class TestEyetechSession : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void first_start_shows_calibrates_and_records();
    void unplugged_device_comes_back_into_the_record();
    void lives_with_what_the_device_does_data();
    void lives_with_what_the_device_does();
    void calibration_ends_whatever_the_device_does_data();
    void calibration_ends_whatever_the_device_does();
    void needs_no_standard_streams();

private:
    void startCalibration();
    void checkRecord();
    [[nodiscard]] QByteArray screen() const { return program_->window("^Calibration$"); }
    [[nodiscard]] QImage picture() const { return desktop::screenshot(screen().toUInt()); }
    [[nodiscard]] bool showsScores() const;
    [[nodiscard]] bool showsTarget() const {
        return !screen().isEmpty() && desktop::count(movingTarget, picture()) > 0;
    }
    [[nodiscard]] bool printed(const QString &text) const { return program_->process().log().contains(text); }

    std::unique_ptr<Home> home_;
    std::unique_ptr<Program> program_;
};

void TestEyetechSession::init() {
    home_ = std::make_unique<Home>(QString());
    program_ = std::make_unique<Program>(*home_);
    program_->setVariable("LD_LIBRARY_PATH", OCELA_EYETECH_LIBRARY_FOLDER);
    program_->setVariable("OCELA_SIM_BLINK_INTERVAL", "0");
    QVERIFY(QDir().mkpath(home_->dataFolder()));
    QFile settings(home_->dataFolder() + "/EyeTechSettings.xml");
    QVERIFY(settings.open(QIODevice::WriteOnly));
    settings.write("<settings version=\"1\"><property name=\"CalibrationTimeMs\">1000</property></settings>");
}

void TestEyetechSession::cleanup() {
    program_.reset();
}

void TestEyetechSession::startCalibration() {
    QVERIFY(desktop::click("Calibrate"));
    QTRY_VERIFY_WITH_TIMEOUT(showsTarget(), patienceMs);
}

bool TestEyetechSession::showsScores() const {
    const QImage shown = picture();
    return std::all_of(std::begin(targets), std::end(targets), [&](QPoint target) {
        return shown.valid(target) && shown.pixel(target + QPoint(0, 17)) == outline;
    });
}

void TestEyetechSession::checkRecord() {
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
        // Pupils: 2 to 8 mm, the left one in the left half of the camera's image.
        QVERIFY2(qAbs(row[12].toFloat() - 5) < 3 && qAbs(row[19].toFloat() - 5) < 3, qPrintable(row.join(',')));
        QVERIFY2(row[13].toInt() > 0 && row[13].toInt() < 1024 && row[20].toInt() > 1024, qPrintable(row.join(',')));
    }
}

void TestEyetechSession::first_start_shows_calibrates_and_records() {
    QVERIFY(program_->startWindow());
    QVERIFY(desktop::waitFor("eyetech"));
    QTRY_VERIFY_WITH_TIMEOUT(desktop::showsIndicator(green), patienceMs);
    QTRY_VERIFY_WITH_TIMEOUT(desktop::count(pupilAt62cm, program_->picture()) > 500, patienceMs);
    desktop::keep(program_->picture(), "eyetech-window");
    QVERIFY(home_->readSettings().contains("eyetech"));

    QVERIFY(desktop::click("Screen #1 (1920x1080)"));
    QVERIFY(desktop::click("Screen #2 (1024x768)"));
    startCalibration();
    desktop::keep(desktop::screenshot(), "eyetech-calibration-target");
    QTRY_VERIFY_WITH_TIMEOUT(showsScores(), patienceMs);
    desktop::keep(picture(), "eyetech-calibration-scores");
    desktop::click(saveButton);
    QTRY_VERIFY_WITH_TIMEOUT(screen().isEmpty(), patienceMs);

    QVERIFY(desktop::click("Start record"));
    QTest::qWait(aWhileMs);
    QVERIFY(desktop::click("Stop record"));
    QTRY_VERIFY_WITH_TIMEOUT(!home_->recordFile().isEmpty(), patienceMs);
    checkRecord();

    startCalibration();
    QTRY_VERIFY_WITH_TIMEOUT(showsScores(), patienceMs);
    desktop::click(recalibrateButton);
    QTRY_VERIFY_WITH_TIMEOUT(showsTarget(), patienceMs);
    desktop::press("Escape");
    QTRY_VERIFY_WITH_TIMEOUT(screen().isEmpty(), patienceMs);
    QCOMPARE(program_->close(), 0);
    QCOMPARE(program_->complaints(), QStringList());
}

void TestEyetechSession::unplugged_device_comes_back_into_the_record() {
    QTemporaryDir folder;
    QFile unplugged(folder.filePath("unplugged"));
    program_->setVariable("OCELA_SIM_EYETECH_UNPLUGGED_FILE", unplugged.fileName());
    QVERIFY(program_->startWindow());
    QTRY_VERIFY_WITH_TIMEOUT(desktop::showsIndicator(green), patienceMs);
    QVERIFY(desktop::click("Start record"));
    QTest::qWait(aWhileMs);
    QVERIFY(unplugged.open(QIODevice::WriteOnly));
    QTRY_VERIFY_WITH_TIMEOUT(desktop::showsIndicator(red), patienceMs);
    QTest::qWait(aWhileMs);
    QVERIFY(unplugged.remove());
    QTRY_VERIFY_WITH_TIMEOUT(desktop::showsIndicator(green), patienceMs);
    QTest::qWait(aWhileMs);
    QVERIFY(desktop::click("Stop record"));
    QTRY_VERIFY_WITH_TIMEOUT(!home_->recordFile().isEmpty(), patienceMs);

    const RecordFile record(home_->recordFile());
    int gaps = 0;
    for (int row = 1; row < record.rows.size(); ++row)
        gaps += record.timestamp(row) - record.timestamp(row - 1) > 900 ? 1 : 0;
    QCOMPARE(gaps, 1);
    QVERIFY(record.timestamp(record.rows.size() - 1) - record.timestamp(0) > 1900);
    QCOMPARE(program_->close(), 0);
    QCOMPARE(program_->complaints(), QStringList());
}

void TestEyetechSession::lives_with_what_the_device_does_data() {
    QTest::addColumn<QString>("variable");
    QTest::addColumn<QString>("value");
    QTest::addColumn<bool>("connected");
    QTest::addColumn<QString>("text");  // in the output
    QTest::addColumn<int>("complaints");
    QTest::addColumn<QByteArray>("typed");
    const auto row = [](const char *name, const char *variable, const QString &value, bool connected, const char *text,
                        int complaints = 0, const QByteArray &typed = QByteArray()) {
        QTest::newRow(name) << QString(variable) << value << connected << QString(text) << complaints << typed;
    };
    row("lacks an entry point", "LD_LIBRARY_PATH", OCELA_EYETECH_LIBRARY_FOLDER "/incomplete", false,
        "QLDevice_Enumerate() failed with error code 10\nQLDevice_Enumerate() failed with error code 10\n");
    row("is not there", "OCELA_SIM_EYETECH_DEVICES", "0", false, "No devices present.\n");
    row("comes late", "OCELA_SIM_EYETECH_APPEAR_AFTER", "2", true, "Device not found");
    row("cannot be looked for", "OCELA_SIM_EYETECH_ENUMERATE_ERROR", "7", false, "failed with error code 7\n");
    row("cannot be asked", "OCELA_SIM_EYETECH_STATUS_ERROR", "5", false, "");
    row("does not start", "OCELA_SIM_EYETECH_START_ERROR", "5", true, "Device not started successfully!");
    row("is unplugged and back by itself", "OCELA_SIM_EYETECH_REPLUG_AFTER", "2", true, "");
    row("sends no images", "OCELA_SIM_EYETECH_FAULT", "null-image", true, "camera images", 1);
    row("sends images beyond all size", "OCELA_SIM_EYETECH_TOLD_IMAGE", "100000x100000", true, "camera images", 1);
    row("is one of two, chosen at the console", "OCELA_SIM_EYETECH_DEVICES", "2", true,
        "Which device would you like to use? ", 0, "1");
    row("is one of two, and nobody chooses", "OCELA_SIM_EYETECH_DEVICES", "2", false, "Invalid device: -49.\n\n");
    row("blocks for 10 s", "OCELA_SIM_EYETECH_FRAME_BLOCKS_MS", "10000", true, "");
}

void TestEyetechSession::lives_with_what_the_device_does() {
    QFETCH(const QString, variable);
    QFETCH(const QString, value);
    QFETCH(const bool, connected);
    QFETCH(const QString, text);
    QFETCH(const QByteArray, typed);
    program_->setVariable("OCELA_SIM_EYETECH_UNPLUG_AFTER", variable.contains("REPLUG") ? "1" : "0");
    program_->setVariable(variable, value);
    program_->start();
    program_->process().write(typed);
    program_->process().closeWriteChannel();
    QTRY_VERIFY_WITH_TIMEOUT(desktop::showsIndicator(connected ? green : red), patienceMs);
    QTRY_VERIFY_WITH_TIMEOUT(printed(text), patienceMs);
    QTest::qWait(aWhileMs);
    QElapsedTimer time;
    time.start();
    QCOMPARE(program_->close(), 0);
    QVERIFY2(time.elapsed() < 5000, "it must not wait for the device");
    QTEST(program_->complaints().size(), "complaints");
}

void TestEyetechSession::calibration_ends_whatever_the_device_does_data() {
    QTest::addColumn<QString>("fault");
    QTest::addColumn<QString>("way");
    QTest::newRow("Escape while a target fails again and again") << "target-fails"
                                                                 << "Escape";
    QTest::newRow("closing the program while a target fails again and again") << "target-fails"
                                                                              << "";
    QTest::newRow("it ends by itself, as there are too many targets") << "small-target-buffer"
                                                                      << "by itself";
    QTest::newRow("with scores, though a target fails once") << "target-fails-once"
                                                             << "scores";
}

void TestEyetechSession::calibration_ends_whatever_the_device_does() {
    QFETCH(const QString, fault);
    QFETCH(const QString, way);
    program_->setVariable("OCELA_SIM_EYETECH_FAULT", fault);
    QVERIFY(program_->startWindow());
    QVERIFY(desktop::click("Screen #1 (1920x1080)"));
    QVERIFY(desktop::click("Screen #2 (1024x768)"));
    if (way == "by itself") {
        QVERIFY(desktop::click("Calibrate"));
        QVERIFY(program_->process().waitForLog("The target buffer is too small. It should be at least "));
    } else if (way == "scores") {
        startCalibration();
        QTRY_VERIFY_WITH_TIMEOUT(showsScores(), patienceMs);
        desktop::click(saveButton);
    } else {
        startCalibration();
        QTRY_COMPARE_WITH_TIMEOUT(picture().pixel(targets[1]), movingTarget, patienceMs);
        QTest::qWait(aWhileMs);
        QCOMPARE(picture().pixel(targets[1]), movingTarget);
        desktop::keep(picture(), "eyetech-target-fails");
    }
    if (way == "Escape")
        desktop::press("Escape");
    if (!way.isEmpty())
        QTRY_VERIFY_WITH_TIMEOUT(screen().isEmpty(), patienceMs);
    QCOMPARE(program_->close(), 0);
    QCOMPARE(program_->complaints(), QStringList());
}

void TestEyetechSession::needs_no_standard_streams() {
    program_->setVariable("LD_LIBRARY_PATH", QString());  // so that it prints all the time
    program_->process().setProgram("sh");
    program_->process().setArguments({"-c", "exec \"$0\" <&- >&-", OCELA_PROGRAM});
    QVERIFY(program_->startWindow());
    QTRY_VERIFY_WITH_TIMEOUT(desktop::showsIndicator(red), patienceMs);
    QTest::qWait(aWhileMs);
    QVERIFY(desktop::shows("Start record"));
    QCOMPARE(program_->close(), 0);
    QVERIFY(!printed("Enumerate"));
}

OCELA_TEST(TestEyetechSession)
#include "tst_eyetech.moc"
