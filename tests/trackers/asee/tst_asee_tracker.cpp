#include "asee_fixture.h"
#include "support/test_main.h"
#include "trackers/asee/asee_live_objects.h"
#include "trackers/asee/asee_settings.h"
#include "trackers/asee/asee_tracker.h"

#include <QApplication>
#include <QDir>
#include <QMessageBox>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTimer>
#include <future>
#include <thread>

class TestAseePro : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { tracker_.reset(); }

    void starts_once_and_stays_started();
    void failed_start_and_reconnect_data();
    void failed_start_and_reconnect();
    void reconnects_during_a_recording();
    void reconnect_closes_the_calibration_screen();
    void calibrate_for_another_area_starts_again();
    void calibrate_restores_a_minimised_screen();
    void stop_clears_the_folder_of_unpacked_files();
    void delivered_files_are_copied_but_not_overwritten();
    void remembers_the_calibrated_area();
    void late_callbacks_are_ignored();
    void new_callbacks_do_not_delay_the_destructor();

private:
    void create() { tracker_ = std::make_unique<aSeePro>(folder_->path(), nullptr); }
    [[nodiscard]] QString path(const char *name) const { return folder_->filePath(name); }

    std::unique_ptr<QTemporaryDir> folder_;
    std::unique_ptr<aSeePro> tracker_;
};

void TestAseePro::init() {
    library().reset();
    folder_ = std::make_unique<QTemporaryDir>();
    writeFile(path("coefficient.dat"), "coefficients");
    create();
    QCOMPARE(takeCalls(), QStringList("stop"));
}

void TestAseePro::starts_once_and_stays_started() {
    const QSignalSpy changes(tracker_.get(), &EyetrackerInterface::connectedChanged);
    QVERIFY(tracker_->start());
    QCOMPARE(takeCalls(), QStringList({"device_connect", "set_image_callback", "set_gaze_callback",
                                       "start " + path("config"), "start_tracking coefficients"}));
    tracker_->stop();
    QVERIFY(tracker_->start());
    QCOMPARE(takeCalls(), QStringList("stop"));
    QVERIFY(tracker_->isConnected());
    QCOMPARE(changes.count(), 1);
}

void TestAseePro::failed_start_and_reconnect_data() {
    dataColumns<QString, bool, QString, QString>("function", "started", "box", "problem");
    dataRow("no device", "_7i_device_connect", false, "others error!!! code: 7", "device cannot be opened (error 7)");
    dataRow("library does not start", "_7i_start", false, QString(), "device does not start (error 7)");
    dataRow("no coefficients", QString(), false, QString(), "not calibrated");
    dataRow("refused coefficients", "_7i_start_tracking", true, QString(), QString());
}

void TestAseePro::failed_start_and_reconnect() {
    QFETCH(QString, function);
    const auto fail = [&] {
        if (function.isEmpty())
            QVERIFY(QFile::remove(path("coefficient.dat")));
        library().results[function.toStdString()] = 7;
    };
    const auto repair = [&] {
        library().results.clear();
        writeFile(path("coefficient.dat"), "coefficients");
    };
    QVERIFY(tracker_->start());
    fail();
    if (!function.isEmpty())
        QTest::ignoreMessage(QtInfoMsg, QRegularExpression('^' + function + R"( \([a-z, ]+\) returned 7$)"));
    tracker_->reconnect();  // without a box
    QTEST(tracker_->isConnected(), "started");
    QTEST(tracker_->connectionProblem(), "problem");
    repair();
    if (function.isEmpty())
        QCOMPARE(tracker_->connectionProblem(), QString("calibrated, reconnect to use it"));
    tracker_->reconnect();
    QVERIFY(tracker_->isConnected());

    create();
    QString box;
    QTimer::singleShot(0, this, [&] {
        if (auto *shown = qobject_cast<QMessageBox *>(QApplication::activeModalWidget())) {
            box = shown->windowTitle() + ' ' + shown->text();
            shown->accept();
        }
    });
    fail();
    QTEST(tracker_->start(), "started");
    QTEST(tracker_->isConnected(), "started");
    QCoreApplication::processEvents();
    QTEST(box, "box");
    QTEST(tracker_->connectionProblem(), "problem");
    repair();
    QVERIFY(tracker_->start());
    QVERIFY(tracker_->isConnected());
}

void TestAseePro::reconnects_during_a_recording() {
    const QSignalSpy changes(tracker_.get(), &EyetrackerInterface::connectedChanged);
    const TestRecord record;
    const auto send = [&record] { library().gaze(record.data(), library().context); };
    QVERIFY(tracker_->start());
    const QStringList opening = takeCalls();
    tracker_->startRecord(path("record.csv"));
    send();
    tracker_->stop();
    tracker_->reconnect();
    send();
    QCOMPARE(takeCalls(), QStringList({"stop", "stop"}) + opening);
    QCOMPARE(changes.count(), 1);
    QCOMPARE(tracker_->recordLength().sampleCount, std::size_t{2});
    QVERIFY(tracker_->stopRecord());
}

void TestAseePro::reconnect_closes_the_calibration_screen() {
    const QSignalSpy results(tracker_.get(), &EyetrackerInterface::calibrationFinished);
    QVERIFY(tracker_->start());
    library().pointsFinish = false;
    tracker_->calibrate(QRect(0, 0, 640, 480));
    tracker_->reconnect();  // before Space
    QVERIFY(!calibrationScreen()->isVisible());
    tracker_->calibrate(QRect(0, 0, 640, 480));
    QTest::keyClick(calibrationScreen(), Qt::Key_Space);
    QTRY_VERIFY_WITH_TIMEOUT(library().wasCalled("start_calibration_point 1 50 50"), maxWaitMs);
    (void)takeCalls();
    tracker_->reconnect();
    QCOMPARE(takeCalls().mid(0, 3), QStringList({"cancel_calibration", "complete_calibration", "stop"}));
    QCOMPARE(resultsIn(results),
             QList<CalibrationResult>({CalibrationResult::Cancelled, CalibrationResult::Cancelled}));
    QVERIFY(!calibrationScreen()->isVisible());
    QVERIFY(tracker_->isConnected());
}

void TestAseePro::calibrate_for_another_area_starts_again() {
    const QSignalSpy starts(tracker_.get(), &EyetrackerInterface::calibrationStarted);
    const QSignalSpy results(tracker_.get(), &EyetrackerInterface::calibrationFinished);
    library().pointsFinish = false;
    tracker_->calibrate(QRect(0, 0, 640, 480));
    QTest::keyClick(calibrationScreen(), Qt::Key_Space);
    QTRY_VERIFY_WITH_TIMEOUT(library().wasCalled("start_calibration_point 1 50 50"), maxWaitMs);
    (void)takeCalls();
    tracker_->calibrate(QRect(0, 0, 640, 480));
    QCOMPARE(takeCalls(), QStringList("set_calibration_mode 0"));
    QCOMPARE(starts.count(), 1);
    QCOMPARE(results.count(), 0);

    tracker_->calibrate(QRect(640, 0, 640, 480));
    QCOMPARE(takeCalls(), QStringList({"cancel_calibration", "complete_calibration", "set_calibration_mode 0"}));
    QCOMPARE(starts.count(), 2);
    QCOMPARE(resultsIn(results), QList<CalibrationResult>({CalibrationResult::Cancelled}));
    QVERIFY(calibrationScreen()->isVisible());
    QTest::keyClick(calibrationScreen(), Qt::Key_Space);
    QTRY_VERIFY_WITH_TIMEOUT(library().wasCalled("start_calibration_point 1 50 50"), maxWaitMs);
}

void TestAseePro::calibrate_restores_a_minimised_screen() {
    tracker_->calibrate(QRect(0, 0, 640, 480));
    calibrationScreen()->showMinimized();
    tracker_->calibrate(QRect(0, 0, 640, 480));
    QVERIFY(calibrationScreen()->isVisible() && !calibrationScreen()->isMinimized());
    QVERIFY(calibrationScreen()->isFullScreen());
}

void TestAseePro::stop_clears_the_folder_of_unpacked_files() {
    QVERIFY(QDir(folder_->path()).mkpath("config/armeabi/deeper"));
    writeFile(path("config/armeabi/deeper/model"), "unpacked");
    writeFile(path("config/kept"), "model");
    tracker_->stop();
    QVERIFY(QDir(path("config/armeabi")).isEmpty());
    QVERIFY(QFile::exists(path("config/kept")));
}

void TestAseePro::delivered_files_are_copied_but_not_overwritten() {
    const QDir program(QCoreApplication::applicationDirPath());
    QVERIFY(program.mkpath("config"));
    const QStringList names{"config/detectEye.mnn", "config/pupildet_radius.mnn", "coefficient.dat"};
    for (const QString &name : names)
        writeFile(program.filePath(name), "delivered");
    QFile::setPermissions(program.filePath(names.last()), QFileDevice::ReadOwner);
    writeFile(path("config/detectEye.mnn"), "the user's own");
    QVERIFY(QFile::remove(path("coefficient.dat")));

    create();
    for (const QString &name : names)
        QFile::remove(program.filePath(name));
    QCOMPARE(readFile(path("config/detectEye.mnn")), QByteArray("the user's own"));
    QCOMPARE(readFile(path("config/pupildet_radius.mnn")), QByteArray("delivered"));
    QVERIFY(QFileInfo(path("coefficient.dat")).isWritable());
    QVERIFY(!QFile::exists(path("config/pupildet.mnn")));
}

void TestAseePro::remembers_the_calibrated_area() {
    QCOMPARE(tracker_->calibratedArea(), QRect(0, 0, 1920, 1024));
    const QSignalSpy changes(tracker_->settings(), &VTSettings::changedProperty);
    const QRect area(-1280, 0, 1280, 1024);
    for (int i = 0; i < 2; ++i)
        tracker_->calibrate(area);
    QCOMPARE(changes, QList<QList<QVariant>>({{"LastCalibratedAreaX"}, {"LastCalibratedAreaW"}}));
    QCOMPARE(takeCalls(), QStringList({"set_calibration_mode 0", "set_calibration_mode 0"}));
    create();
    QCOMPARE(tracker_->calibratedArea(), area);

    // A position outside all screens, and a size that would overflow.
    for (const char *name : {"LastCalibratedAreaX", "LastCalibratedAreaW"})
        QVERIFY(tracker_->settings()->setValue(name, 2147483647));
    create();
    QCOMPARE(tracker_->calibratedArea(), QRect(1000000, 0, 1000000, 1024));
}

void TestAseePro::late_callbacks_are_ignored() {
    QVERIFY(tracker_->start());
    tracker_->setPreviewEnabled(true);
    std::atomic<bool> running{true};
    std::atomic<int> sent{0};
    std::thread device([&] {
        const TestRecord record;
        const std::array<unsigned char, 64> pixels{};
        for (; running; ++sent) {
            library().gaze(sent % 2 == 0 ? record.data() : nullptr, library().context);
            library().image(pixels.data(), 64, 8, 8, 0, library().context);
        }
    });
    const auto sendMore = [&] {
        for (const int before = sent; sent < before + 100;)
            std::this_thread::yield();
    };
    for (int i = 0; i < 20; ++i) {
        tracker_->calibrate(QRect(0, 0, 640, 480));
        sendMore();
        tracker_->stopCalibration();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    QVERIFY(tracker_->getLastSample().valid);
    tracker_->stop();
    tracker_->calibrate(QRect(0, 0, 640, 480));
    sendMore();
    tracker_.reset();
    sendMore();
    running = false;
    device.join();
}

void TestAseePro::new_callbacks_do_not_delay_the_destructor() {
    int object = 0;
    std::promise<void> entered, left;
    asee::LiveObjects<int>::add(&object);
    const auto call = [&](auto use) { return asee::LiveObjects<int>::with(&object, use); };
    const auto wait = [&](int &) {
        entered.set_value();
        left.get_future().wait();
    };
    std::thread callback([&] { call(wait); });
    entered.get_future().wait();
    std::future<void> end = std::async(std::launch::async, [&] { asee::LiveObjects<int>::remove(&object); });
    const bool isRefused = QTest::qWaitFor([&] { return !call([](int &) {}); }, maxWaitMs);
    const bool hasWaited = end.wait_for(std::chrono::seconds(0)) == std::future_status::timeout;
    left.set_value();
    callback.join();
    end.wait();
    QVERIFY(isRefused && hasWaited);
}

OCELA_TEST(TestAseePro)
#include "tst_asee_tracker.moc"
