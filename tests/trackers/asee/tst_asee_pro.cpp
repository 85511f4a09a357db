#include "asee_fixture.h"
#include "support/test_main.h"
#include "trackers/asee/asee_pro.h"
#include "trackers/asee/asee_pro_settings.h"

#include <QDir>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <thread>

/// The back-end against the vendor's library.
class TestAseePro : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void starts_once_and_stays_started();
    void start_that_fails_data();
    void start_that_fails();
    void starts_after_the_calibration_that_it_lacked();
    void stop_clears_what_the_library_unpacked();
    void delivered_files_are_copied_but_never_overwritten();
    void remembers_the_calibrated_area();
    void settings_beyond_all_screens_are_bounded();
    void gaze_becomes_samples_of_the_calibrated_area();
    void callbacks_end_with_the_tracker();

private:
    [[nodiscard]] QString path(const char *name) const { return folder_->filePath(name); }

    std::unique_ptr<QTemporaryDir> folder_;
    std::unique_ptr<aSeePro> tracker_;
};

void TestAseePro::init() {
    library().reset();
    folder_ = std::make_unique<QTemporaryDir>();
    write(path("coefficient.dat"), "coefficients");
    tracker_ = std::make_unique<aSeePro>(folder_->path(), nullptr);
    QCOMPARE(takeCalls(), QStringList("stop"));
}

void TestAseePro::cleanup() {
    tracker_.reset();
}

void TestAseePro::starts_once_and_stays_started() {
    const QSignalSpy changes(tracker_.get(), &EyetrackerInterface::connectedChanged);
    QVERIFY(tracker_->start());
    QCOMPARE(takeCalls(), QStringList({"connect", "image callback", "gaze callback", "start " + path("config"),
                                       "start tracking coefficients"}));
    tracker_->stop();
    QVERIFY(tracker_->start());
    QCOMPARE(takeCalls(), QStringList("stop"));
    QVERIFY(tracker_->isConnected());
    QCOMPARE(changes.count(), 1);
}

void TestAseePro::start_that_fails_data() {
    QTest::addColumn<QString>("function");
    QTest::addColumn<bool>("started");
    QTest::addColumn<QStringList>("box");
    QTest::newRow("device that is not there") << "connect" << false << QStringList{"others error!!!", "code: 7"};
    QTest::newRow("library that does not start") << "start" << false << QStringList();
    QTest::newRow("no coefficients") << QString() << false << QStringList();
    QTest::newRow("coefficients that are refused") << "start tracking" << true << QStringList();
}

void TestAseePro::start_that_fails() {
    QFETCH(QString, function);
    BoxReader boxes;
    if (function.isEmpty())
        QVERIFY(QFile::remove(path("coefficient.dat")));
    library().setResult(function.toStdString(), 7);
    QTEST(tracker_->start(), "started");
    QTEST(tracker_->isConnected(), "started");
    QTEST(boxes.texts, "box");
}

void TestAseePro::starts_after_the_calibration_that_it_lacked() {
    QVERIFY(QFile::rename(path("coefficient.dat"), path("kept")));
    QVERIFY(!tracker_->start());
    QVERIFY(QFile::rename(path("kept"), path("coefficient.dat")));
    QVERIFY(tracker_->start());
    QVERIFY(tracker_->isConnected());
}

void TestAseePro::stop_clears_what_the_library_unpacked() {
    QVERIFY(QDir(folder_->path()).mkpath("config/armeabi/deeper"));
    write(path("config/armeabi/deeper/model"), "unpacked");
    write(path("config/kept"), "model");
    tracker_->stop();
    QVERIFY(QDir(path("config/armeabi")).isEmpty());
    QVERIFY(QFile::exists(path("config/kept")));
}

void TestAseePro::delivered_files_are_copied_but_never_overwritten() {
    const QDir program(QCoreApplication::applicationDirPath());
    QVERIFY(program.mkpath("config"));
    const QStringList names{"config/detectEye.mnn", "config/pupildet_radius.mnn", "coefficient.dat"};
    for (const QString &name : names)
        write(program.filePath(name), "delivered");
    QFile::setPermissions(program.filePath("coefficient.dat"), QFileDevice::ReadOwner);
    const QTemporaryDir fresh;
    QVERIFY(QDir(fresh.path()).mkpath("config"));
    write(fresh.filePath("config/detectEye.mnn"), "the user's own");

    const aSeePro tracker(fresh.path(), nullptr);
    for (const QString &name : names)
        QFile::remove(program.filePath(name));
    QCOMPARE(contentOf(fresh.filePath("config/detectEye.mnn")), QByteArray("the user's own"));
    QCOMPARE(contentOf(fresh.filePath("config/pupildet_radius.mnn")), QByteArray("delivered"));
    QVERIFY(QFileInfo(fresh.filePath("coefficient.dat")).isWritable());
    QVERIFY(!QFile::exists(fresh.filePath("config/pupildet.mnn")));
}

void TestAseePro::remembers_the_calibrated_area() {
    QCOMPARE(tracker_->calibratedArea(), QRect(0, 0, 1920, 1024));
    auto *settings = qobject_cast<aSeeProSettings *>(tracker_->settings());
    const QSignalSpy changes(settings, &VTSettings::changedProperty);
    const QRect area(-1280, 0, 1280, 1024);
    for (int i = 0; i < 2; ++i)
        tracker_->calibrate(area);
    QCOMPARE(changes, QList<QList<QVariant>>({{"LastCalibratedAreaX"}, {"LastCalibratedAreaW"}}));
    QCOMPARE(takeCalls(), QStringList({"mode 0", "mode 0"}));
    tracker_ = std::make_unique<aSeePro>(folder_->path(), nullptr);
    QCOMPARE(tracker_->calibratedArea(), area);
}

void TestAseePro::settings_beyond_all_screens_are_bounded() {
    write(path("aSeeProSettings.xml"),
          "<settings><property name=\"LastCalibratedAreaX\">2147483647</property>"
          "<property name=\"LastCalibratedAreaW\">2147483647</property></settings>");
    const aSeePro tracker(folder_->path(), nullptr);
    QCOMPARE(tracker.calibratedArea(), QRect(1000000, 0, 1000000, 1024));
}

void TestAseePro::gaze_becomes_samples_of_the_calibrated_area() {
    QVERIFY(tracker_->start());
    tracker_->setCalibratedArea(QRect(500, 600, 1920, 1024));
    library().sendGaze(nullptr);
    QVERIFY(tracker_->getSamples().isEmpty());
    library().sendGaze(TestRecord().setPoint(asee::gaze_record::gaze, 0.5F, 0.25F).data());
    QCOMPARE(tracker_->getLastSample().x_px, 960);
    QCOMPARE(tracker_->getLastSample().y_px, 256);
    QCOMPARE(tracker_->getLastSample().timestamp, 0);
}

void TestAseePro::callbacks_end_with_the_tracker() {
    QVERIFY(tracker_->start());
    tracker_->setPreviewEnabled(true);
    std::atomic<bool> running{true};
    std::atomic<int> sent{0};
    std::thread device([&] {
        const TestRecord record;
        const std::array<unsigned char, 64> pixels{};
        while (running) {
            library().sendGaze(record.data());
            library().sendImage(pixels.data(), 64, 8, 8);
            ++sent;
        }
    });
    const auto goOn = [&] {
        for (const int before = sent; sent < before + 100;)
            std::this_thread::yield();
    };
    for (int i = 0; i < 20; ++i) {
        tracker_->calibrate(QRect(0, 0, 640, 480));
        goOn();
        tracker_->stopCalibration();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    tracker_->stop();
    goOn();
    tracker_->calibrate(QRect(0, 0, 640, 480));
    tracker_.reset();
    goOn();
    running = false;
    device.join();
}

OCELA_TEST(TestAseePro)
#include "tst_asee_pro.moc"
