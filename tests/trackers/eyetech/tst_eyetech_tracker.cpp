#include "support/redirected.h"
#include "support/test_main.h"
#include "trackers/eyetech/eyetech_calibration_screen.h"
#include "trackers/eyetech/eyetech_device_question.h"
#include "trackers/eyetech/eyetech_frame_fetcher.h"
#include "trackers/eyetech/eyetech_tracker.h"
#include "trackers/eyetech/record_builder.h"
#include "trackers/eyetech/script.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QListWidget>
#include <QPushButton>
#include <QRegularExpression>
#include <QSemaphore>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTemporaryFile>
#include <atomic>
#include <future>
#include <memory>

/// Tests the back-end with a fake library.
class TestEyetechGrabber : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup() { tracker_.reset(); }

    void status_controls_connection_and_frames_data();
    void status_controls_connection_and_frames();
    void waits_for_a_device();
    void frame_becomes_a_sample();
    void invalid_images_are_reported_again_after_a_valid_one();
    void image_is_not_copied_after_a_stop_during_the_call();
    void larger_record_does_no_harm();
    void keeps_its_settings();
    void reconnects_a_device_with_a_new_id();
    void reconnects_without_waiting_for_a_frame();
    void asks_for_one_of_several_devices();
    void closed_question_returns_with_reconnect();
    void serial_number_in_the_settings_answers_the_question_data();
    void serial_number_in_the_settings_answers_the_question();

private:
    void attachTwo();
    [[nodiscard]] static EyetechDeviceQuestion *question();
    /// Ends the calls of hooks that use local variables of a test.
    void close() {
        tracker_.reset();
        freshScript();
    }
    void open() { tracker_ = std::make_unique<EyetechGrabber>(folder_->path(), nullptr); }

    QTemporaryFile emptyInput_;
    std::unique_ptr<Redirected> input_;
    std::unique_ptr<QTemporaryDir> folder_;
    std::unique_ptr<EyetechGrabber> tracker_;
    Script *script_ = nullptr;
    std::atomic<int> devices_{1};
    std::atomic<int> status_{3};
    std::atomic<int> result_{0};
};

/// The console must not answer a question.
void TestEyetechGrabber::initTestCase() {
    QVERIFY(emptyInput_.open());
    input_ = std::make_unique<Redirected>(STDIN_FILENO, emptyInput_.handle());
}

void TestEyetechGrabber::init() {
    folder_ = std::make_unique<QTemporaryDir>();
    script_ = &freshScript();
    devices_ = 1;
    status_ = 3;
    result_ = 0;
    script_->QLDevice_Enumerate = [this](int *count, int *devices) { return *devices = 7, *count = devices_, 0; };
    script_->QLDevice_GetStatus = [this](int device, int *status) {
        *status = device == 7 ? status_.load() : 0;
        return result_.load();
    };
}

void TestEyetechGrabber::status_controls_connection_and_frames_data() {
    dataColumns<int, int, QString, bool, bool, bool>("status", "result", "action", "connected", "restarted", "frames");
    QTest::newRow("stopped") << 2 << 0 << "" << true << false << false;
    QTest::newRow("stopped, after start()") << 2 << 0 << "start" << true << true << false;
    QTest::newRow("stopped, after stop()") << 2 << 0 << "stop" << true << true << false;
    QTest::newRow("running") << 3 << 0 << "start" << true << false << true;
    QTest::newRow("other status") << 1 << 0 << "start" << false << false << false;
    QTest::newRow("status call fails") << 3 << 5 << "start" << false << false << false;
}

void TestEyetechGrabber::status_controls_connection_and_frames() {
    QFETCH(const int, status);
    QFETCH(const int, result);
    QFETCH(const QString, action);
    status_ = status;
    result_ = result;
    open();
    const QSignalSpy samples(tracker_.get(), &EyetrackerInterface::newSample);
    if (action == "start")
        QVERIFY(tracker_->start());
    if (action == "stop")
        tracker_->stop();
    (void)script_->takeCalls();
    int polls = 0;
    script_->QLDevice_GetStatus = [&, this](int, int *state) { return *state = status_, ++polls, result_.load(); };
    QTRY_VERIFY(polls > 5);
    QTEST(tracker_->isConnected(), "connected");
    QTEST(script_->takeCalls().contains("QLDevice_Start"), "restarted");
    QTEST(samples.count() > 0, "frames");
    tracker_.reset();
}

void TestEyetechGrabber::waits_for_a_device() {
    devices_ = 0;
    open();
    QVERIFY(QTest::qWaitFor([this] { return script_->takeCalls().count("QLDevice_Enumerate") >= 1; },
                            test_support::longWaitMs));
    QCOMPARE(tracker_->deviceId(), 0);
    tracker_->calibrate(QRect(0, 0, 100, 100));
    QVERIFY(!script_->takeCalls().contains("QLCalibration_Initialize"));
    devices_ = 1;
    QTRY_COMPARE(tracker_->deviceId(), 7);
    QTRY_VERIFY(tracker_->isConnected());
    QVERIFY(script_->takeCalls().contains("QLDevice_ImportSettings"));
}

void TestEyetechGrabber::frame_becomes_a_sample() {
    quicklink2::QLFrameRecord record{};
    put(record, 160, true);
    put(record, 496, true);
    int number = 0;
    // left, right: pupil, centre, gaze; combined gaze; focus, distance
    for (const int offset : {164, 168, 172, 192, 196, 332, 336, 340, 360, 364, 500, 504, 648, 652})
        put(record, offset, static_cast<float>(++number) + 0.5F);
    script_->QLDevice_GetFrame = [&](int, int, quicklink2::QLFrameRecord *frame) { return *frame = record, 4; };
    open();
    tracker_->setCalibratedArea(100, 200, 1000, 2000);
    const QSignalSpy samples(tracker_.get(), &EyetrackerInterface::newSample);
    const QSignalSpy data(tracker_.get(), &EyetrackerInterface::newData);
    QTRY_VERIFY(samples.count() > 0);
    QCOMPARE(data.first(), (QVariantList{true, 11.5, 12.5}));
    const EyeTrackingSample s = tracker_->getLastSample();
    QVERIFY(qAbs(s.timestamp - QDateTime::currentMSecsSinceEpoch()) < 60000);
    QCOMPARE((QList<bool>{s.valid, s.l_valid, s.r_valid}), (QList<bool>{true, true, false}));
    QCOMPARE((QList<float>{s.l_pupil_mm, s.l_x, s.l_y, s.r_pupil_mm, s.r_x, s.r_y, s.x, s.y, s.focus, s.distance_cm}),
             (QList<float>{1.5F, 4.5F, 5.5F, 6.5F, 9.5F, 10.5F, 11.5F, 12.5F, 13.5F, 14.5F}));
    QCOMPARE((QList<int>{s.l_pupil_x, s.l_pupil_y, s.r_pupil_x, s.r_pupil_y}), (QList<int>{2, 3, 7, 8}));
    QCOMPARE((QList<int>{s.x_px, s.y_px, s.l_x_px, s.l_y_px, s.r_x_px, s.r_y_px}),
             (QList<int>{115, 250, 45, 110, 95, 210}));
    QCOMPARE(tracker_->getLastFrame().focus(), 13.5F);
    close();
}

void TestEyetechGrabber::invalid_images_are_reported_again_after_a_valid_one() {
    const unsigned char pixel = 0;
    int number = 0;
    script_->QLDevice_GetFrame = [&](int, int, quicklink2::QLFrameRecord *frame) {
        return putImage(*frame, &pixel, ++number == 3 ? 1 : -1, 1), 0;
    };
    for (int i = 0; i < 2; ++i)
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("images of an invalid size"));
    open();
    const QSignalSpy samples(tracker_.get(), &EyetrackerInterface::newSample);
    QTRY_VERIFY(samples.count() > 5);
    close();
}

void TestEyetechGrabber::image_is_not_copied_after_a_stop_during_the_call() {
    auto pixels = std::make_unique<unsigned char[]>(64);
    script_->QLDevice_Stop = [&](int) { return pixels.reset(), 0; };
    QSemaphore asked;
    QSemaphore answered;
    script_->QLDevice_GetFrame = [&](int, int, quicklink2::QLFrameRecord *frame) {
        putImage(*frame, pixels.get(), 8, 8);
        asked.release();
        return answered.acquire(), 0;
    };
    open();
    std::future<QLFrameData> fetched = std::async(std::launch::async, [] { return eyetech::fetchFrame(7); });
    QVERIFY(asked.tryAcquire(1, 60000));
    tracker_->stop();  // does not wait for the frame
    answered.release();
    const QLFrameData frame = fetched.get();
    QVERIFY(frame.image.isNull());
    QVERIFY(!frame.hasInvalidImage());
}

void TestEyetechGrabber::larger_record_does_no_harm() {
    constexpr std::size_t largerBytes = 1024;
    const unsigned char pixel = 9;
    script_->QLDevice_GetFrame = [&](int, int, quicklink2::QLFrameRecord *frame) {
        std::fill_n(reinterpret_cast<unsigned char *>(frame), largerBytes, static_cast<unsigned char>(0xff));
        return putImage(*frame, &pixel, 1, 1), 0;
    };
    open();
    QCOMPARE(eyetech::fetchFrame(7).image.pixelColor(0, 0), QColor(9, 9, 9));
}

void TestEyetechGrabber::keeps_its_settings() {
    status_ = 2;
    open();
    auto *settings = qobject_cast<EyetechSettings *>(tracker_->settings());
    settings->setCalibrationTimeMs(3000);
    settings->setCalibrationAnimationMs(2000);
    QCOMPARE(eyetech::CalibrationSequence::timings.calibrationMs, 3000);
    settings->setCalibration(EyetechSettings::Calibration_16_points);
    tracker_->setCalibratedArea(-10, 20, 300, 200);
    Q_EMIT tracker_->calibrated();
    QStringList shown;
    for (const PropertyDescriptor &property : settings->metaDescriptor())
        shown << (property.visible ? property.name : QString());
    shown.removeAll(QString());
    QCOMPARE(shown, QStringList({"Calibration", "CalibrationTimeMs", "CalibrationAnimationMs", "CalibrationDelayMs",
                                 "DeviceSerialNumber"}));

    eyetech::CalibrationSequence::timings = {};
    open();
    QCOMPARE(eyetech::CalibrationSequence::timings.calibrationMs, 3000);
    QCOMPARE(eyetech::CalibrationSequence::timings.animationMs, 2000);
    QCOMPARE(eyetech::CalibrationSequence::timings.delayMs, 1000);
    QCOMPARE(tracker_->calibratedArea(), QRect(-10, 20, 300, 200));
    QCOMPARE(qobject_cast<EyetechSettings *>(tracker_->settings())->getCalibration(),
             EyetechSettings::Calibration_16_points);
}

void TestEyetechGrabber::reconnects_a_device_with_a_new_id() {
    std::atomic<int> attached{7};
    std::atomic<int> started{0};
    script_->QLDevice_Enumerate = [&](int *count, int *ids) {
        return *ids = attached, *count = attached == 0 ? 0 : 1, 0;
    };
    script_->QLDevice_GetStatus = [&](int device, int *status) {
        return *status = device != attached ? 0 : (device == started ? 3 : 2), 0;
    };
    script_->QLDevice_Start = [&](int device) { return started = device, 0; };
    script_->QLDevice_Stop = [&](int) { return started = 0, 0; };
    open();
    QVERIFY(tracker_->start());
    QVERIFY(tracker_->startRecord(folder_->filePath("record.csv")));
    QTRY_VERIFY(tracker_->recordLength().sampleCount > 0);
    attached = 8;
    QTRY_VERIFY(!tracker_->isConnected());
    (void)script_->takeCalls();
    tracker_->reconnect();
    QCOMPARE(tracker_->deviceId(), 8);
    const QList<QByteArray> calls = script_->takeCalls();
    QVERIFY(calls.indexOf("QLDevice_Stop") < calls.indexOf("QLDevice_ImportSettings"));
    QCOMPARE(calls.last(), QByteArray("QLDevice_Start"));
    QTRY_VERIFY(tracker_->isConnected());
    const std::size_t count = tracker_->recordLength().sampleCount;
    QTRY_VERIFY(tracker_->recordLength().sampleCount > count + 2);

    attached = 0;
    tracker_->reconnect();
    QVERIFY(!tracker_->isConnected());
    attached = 9;
    QTRY_VERIFY(tracker_->isConnected());
    QCOMPARE(started.load(), 9);
    QVERIFY(tracker_->isRecording());
    close();
}

void TestEyetechGrabber::reconnects_without_waiting_for_a_frame() {
    QSemaphore released;
    std::atomic<int> calls{0};
    std::atomic<bool> ended{false};
    script_->QLDevice_GetFrame = [&](int, int waitMs, quicklink2::QLFrameRecord *) {
        if (++calls > 1)
            return 1;
        ended = released.tryAcquire(1, 6 * waitMs);
        return 0;
    };
    open();
    QTRY_COMPARE(calls.load(), 1);
    tracker_->reconnect();
    QVERIFY(!ended);
    QTest::qWait(100);
    QCOMPARE(calls.load(), 1);  // a frame at a time
    released.release();
    QTRY_VERIFY(calls > 2);
    close();
}

void TestEyetechGrabber::attachTwo() {
    script_->QLDevice_Enumerate = [](int *count, int *ids) { return ids[0] = 5, ids[1] = 7, *count = 2, 0; };
    script_->QLDevice_GetInfo = [](int device, quicklink2::QLDeviceInfo *info) {
        qstrcpy(info->modelName, "TM");
        qstrcpy(info->serialNumber, device == 5 ? "five\1" : "seven\1");
        return 0;
    };
}

EyetechDeviceQuestion *TestEyetechGrabber::question() {
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        if (auto *found = qobject_cast<EyetechDeviceQuestion *>(widget); found && found->isVisible())
            return found;
    }
    return nullptr;
}

void TestEyetechGrabber::asks_for_one_of_several_devices() {
    attachTwo();
    open();
    QTest::qWait(100);
    QVERIFY(!question());  // the tracker is not selected yet
    tracker_->start();
    QTRY_VERIFY(question());
    tracker_->stop();
    QVERIFY(!question());
    tracker_->start();
    QTRY_VERIFY(question());
    QVERIFY(!tracker_->isConnected());
    auto *list = question()->findChild<QListWidget *>();
    QCOMPARE(list->count(), 2);
    list->setCurrentRow(1);
    question()->findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Ok)->click();
    QTRY_COMPARE(tracker_->deviceId(), 7);
    QTRY_VERIFY(tracker_->isConnected());
    QVERIFY(!question());

    open();
    QCOMPARE(tracker_->deviceId(), 7);
    QCOMPARE(qobject_cast<EyetechSettings *>(tracker_->settings())->getDeviceSerialNumber(), QString("seven"));
    script_->QLDevice_Enumerate = [](int *count, int *ids) { return *ids = 5, *count = 1, 0; };
    tracker_->reconnect();
    QCOMPARE(tracker_->deviceId(), 5);
    close();
}

void TestEyetechGrabber::closed_question_returns_with_reconnect() {
    attachTwo();
    open();
    tracker_->start();
    QTRY_VERIFY(question());
    question()->reject();
    QTest::qWait(100);
    QVERIFY(!question());
    QVERIFY(tracker_->connectionProblem().contains("several devices"));
    tracker_->reconnect();
    QTRY_VERIFY(question());
    script_->QLDevice_Enumerate = [](int *count, int *) { return *count = 0, 0; };
    QTRY_VERIFY(!question());
    QCOMPARE(tracker_->connectionProblem(), QString("no device found"));
}

void TestEyetechGrabber::serial_number_in_the_settings_answers_the_question_data() {
    dataColumns<bool, QString, int>("isClosed", "number", "device");
    QTest::newRow("open") << false << "seven" << 7;
    QTest::newRow("closed by the user") << true << "seven" << 7;
    QTest::newRow("number that is not attached") << true << "eight" << 0;
}

void TestEyetechGrabber::serial_number_in_the_settings_answers_the_question() {
    QFETCH(const bool, isClosed);
    QFETCH(const QString, number);
    QFETCH(const int, device);
    attachTwo();
    open();
    tracker_->start();
    QTRY_VERIFY(question());
    if (isClosed)
        question()->reject();
    QVERIFY(tracker_->settings()->setValue("DeviceSerialNumber", number));
    if (device == 0)
        QTRY_VERIFY(question());  // asks again
    else
        QTRY_COMPARE(tracker_->deviceId(), device);
    QCOMPARE(question() != nullptr, device == 0);
}

OCELA_TEST(TestEyetechGrabber)
#include "tst_eyetech_tracker.moc"
