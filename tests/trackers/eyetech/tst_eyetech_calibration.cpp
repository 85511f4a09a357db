#include "support/test_main.h"
#include "toolkit/platform/global_keyboard.h"
#include "trackers/eyetech/eyetech_calibration_screen.h"
#include "trackers/eyetech/eyetech_tracker.h"
#include "trackers/eyetech/script.h"

#include <QApplication>
#include <QPushButton>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTimer>
#include <memory>

// The macro declares a function, which must be in the global namespace.
static void initResources() {
    Q_INIT_RESOURCE(ocela);
}

using Calls = QList<QByteArray>;
using CalibrationResult = EyetrackerInterface::CalibrationResult;

/// Tests calibrations with a fake library whose device has the targets 1 and 2.
class TestEyetechCalibrationWidget : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { initResources(); }
    void init();
    void cleanup() { tracker_.reset(); }

    void runs_the_whole_sequence();
    void shows_the_scores_and_the_gaze();
    void recalibrates_and_saves();
    void reconnect_restores_the_calibration_data();
    void reconnect_restores_the_calibration();
    void failed_target_is_repeated();
    void refused_target_is_explained_on_the_screen();
    void failure_is_explained_on_the_screen_data();
    void failure_is_explained_on_the_screen();
    void can_be_cancelled_at_any_time_data();
    void can_be_cancelled_at_any_time();
    void nested_calibrations_do_not_accumulate();

private:
    void attachDevice();
    /// Calls calibrate() from the event loop, as the HTTP API does.
    void calibrate();
    void act(const QString &action);
    [[nodiscard]] QWidget *screen() const;
    [[nodiscard]] QPushButton *button(const QString &text) const;
    /// Returns the number of white pixels on the screen.
    [[nodiscard]] int whiteCount() const;

    QTemporaryDir folder_;
    std::unique_ptr<EyetechGrabber> tracker_;
    Script *script_ = nullptr;
    int calibratedCount_ = 0;
    QList<CalibrationResult> results_;
    int startedCount_ = 0;
    QList<int> statuses_;  ///< results of QLCalibration_GetStatus, one per call; 0 afterwards
    QList<int> times_;     ///< the requested durations of measurements
    const QRect area_{40, 30, 500, 400};
};

void TestEyetechCalibrationWidget::attachDevice() {
    script_->QLDevice_Enumerate = [](int *count, int *devices) { return *devices = 7, *count = 1, 0; };
    script_->QLDevice_GetStatus = [](int, int *status) { return *status = 2, 0; };
    script_->QLCalibration_Create = [](int, int *calibration) { return *calibration = 9, 0; };
    script_->QLCalibration_Initialize = [](int device, int calibration, int type) {
        return calibration == 0 ? 3 : (device == 7 && calibration == 9 && type == 0 ? 0 : 1);
    };
    script_->QLCalibration_GetTargets = [](int, int *count, quicklink2::QLTarget *targets) {
        targets[0] = {1, 20, 25};
        targets[1] = {2, 80, 75};
        return *count = 2, 0;
    };
    script_->QLCalibration_Calibrate = [this](int, int, int ms, bool) { return times_ << ms, 0; };
    script_->QLCalibration_GetStatus = [this](int, int, int *status) {
        *status = statuses_.isEmpty() ? 0 : statuses_.takeFirst();
        return 0;
    };
    script_->QLCalibration_GetScoring = [](int, int target, int eye, quicklink2::QLScore *score) {
        *score = {eye == 0 ? -10.0F : 10.0F, 0, target == 2 ? 12.5F : 5.25F};
        return 0;
    };
}

void TestEyetechCalibrationWidget::init() {
    script_ = &freshScript();
    attachDevice();
    statuses_ = {1, 1};
    times_.clear();
    calibratedCount_ = 0;
    results_.clear();
    startedCount_ = 0;
    tracker_ = std::make_unique<EyetechGrabber>(folder_.path(), nullptr);
    eyetech::CalibrationSequence::timings = {0, 100, 499};
    connect(tracker_.get(), &EyetrackerInterface::calibrated, this, [this] { ++calibratedCount_; });
    connect(tracker_.get(), &EyetrackerInterface::calibrationStarted, this, [this] { ++startedCount_; });
    connect(tracker_.get(), &EyetrackerInterface::calibrationFinished, this,
            [this](CalibrationResult result) { results_ << result; });
    (void)script_->takeCalls();
}

void TestEyetechCalibrationWidget::calibrate() {
    QTimer::singleShot(0, this, [this] {
        tracker_->calibrate(area_);
        QCoreApplication::quit();
    });
    QCoreApplication::exec();
}

void TestEyetechCalibrationWidget::act(const QString &action) {
    const QHash<QString, std::function<void()>> acts{
        {"Escape", [] { Q_EMIT GlobalKeyboard::Instance()->keyPressed(Qt::Key_Escape); }},
        {"stopCalibration()", [this] { tracker_->stopCalibration(); }},
        {"stop()", [this] { tracker_->stop(); }},
        {"reconnect()", [this] { tracker_->reconnect(); }},
        {"another calibrate()", [this] { tracker_->calibrate(area_); }},
        {"refused calibrate()", [this] { tracker_->calibrate(area_); }},
        {"Recalibrate", [this] { button("Recalibrate")->click(); }},
        {"cancelled Recalibrate",
         [this] {
             script_->QLCalibration_Calibrate = [this](int, int, int, bool) { return act("Escape"), 0; };
             act("Recalibrate");
         }},
        {"quitting", [] { QCoreApplication::quit(); }},
        {"losing the device",
         [this] { script_->QLDevice_GetStatus = [](int, int *status) { return *status = 1, 0; }; }},
        {"destroying the tracker", [this] { tracker_.reset(); }},
    };
    acts[action]();
}

QWidget *TestEyetechCalibrationWidget::screen() const {
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        if (widget->isVisible() && qobject_cast<EyetechCalibrationWidget *>(widget))
            return widget;
    }
    return nullptr;
}

QPushButton *TestEyetechCalibrationWidget::button(const QString &text) const {
    for (QPushButton *candidate : screen()->findChildren<QPushButton *>()) {
        if (candidate->text() == text && candidate->isVisible())
            return candidate;
    }
    return nullptr;
}

int TestEyetechCalibrationWidget::whiteCount() const {
    const QImage picture = screen()->grab().toImage();
    int count = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x)
            count += picture.pixel(x, y) == qRgb(255, 255, 255) ? 1 : 0;
    }
    return count;
}

void TestEyetechCalibrationWidget::runs_the_whole_sequence() {
    int applied = 0;
    script_->QLDevice_ApplyCalibration = [&](int device, int calibration) {
        return applied = 10 * device + calibration, 0;
    };
    calibrate();
    QCOMPARE(script_->takeCalls(),
             (Calls{"QLCalibration_Initialize", "QLCalibration_Create", "QLCalibration_Initialize",
                    "QLCalibration_GetTargets", "QLCalibration_Calibrate", "QLCalibration_Calibrate",
                    "QLCalibration_GetScoring", "QLCalibration_GetScoring", "QLCalibration_GetScoring",
                    "QLCalibration_GetScoring", "QLCalibration_Finalize", "QLDevice_ApplyCalibration"}));
    QCOMPARE(applied, 79);
    QCOMPARE(times_, (QList<int>{500, 500}));  // the minimum
    QCOMPARE(calibratedCount_, 1);
    QCOMPARE(results_, QList<CalibrationResult>{CalibrationResult::Done});
    QCOMPARE(tracker_->calibratedArea(), area_);
    QVERIFY(screen() && screen()->geometry() == area_);
}

void TestEyetechCalibrationWidget::shows_the_scores_and_the_gaze() {
    calibrate();
    const auto pixel = [&](int x, int y) { return screen()->grab().toImage().pixelColor(x, y); };
    QCOMPARE(pixel(250, 20), QColor("#333"));
    QCOMPARE(pixel(100, 100 - 8), QColor("#3C0"));  // beside the dot in the centre
    QCOMPARE(pixel(100, 100 - 17), QColor("#FFF"));
    QCOMPARE(pixel(400, 300 - 8), QColor("#C30"));
    QCOMPARE(pixel(50, 100), QColor("#3C0"));    // the gaze of the left eye
    QVERIFY(pixel(370, 300) != QColor("#333"));  // the line to the gaze of the right eye

    EyeTrackingSample sample;
    sample.valid = sample.r_valid = true;
    sample.x = 50;
    sample.y = 200;
    tracker_->addSample(sample);
    QVERIFY(pixel(250, 395).red() > 150);      // the gaze marker, limited to the area
    QVERIFY(pixel(10, 10).red() > 0x33 + 20);  // the shade of the lost eye
    QCOMPARE(pixel(490, 10), QColor("#333"));
    QVERIFY(button("Save") && button("Recalibrate"));
}

void TestEyetechCalibrationWidget::recalibrates_and_saves() {
    calibrate();
    (void)script_->takeCalls();
    button("Recalibrate")->click();
    QVERIFY(!button("Save"));
    QTRY_COMPARE(calibratedCount_, 2);
    QCOMPARE(script_->takeCalls().mid(0, 2), (Calls{"QLCalibration_Initialize", "QLCalibration_GetTargets"}));
    button("Save")->click();
    QVERIFY(!screen());
    QCOMPARE(results_, (QList<CalibrationResult>{CalibrationResult::Done, CalibrationResult::Done}));
    QCOMPARE(startedCount_, 2);
    QCOMPARE(script_->takeCalls().last(), QByteArray("QLCalibration_Finalize"));
    // A later key press must not cancel the saved calibration.
    act("Escape");
    QCOMPARE(script_->takeCalls(), Calls());
}

void TestEyetechCalibrationWidget::reconnect_restores_the_calibration_data() {
    dataColumns<QString, bool, QString, int, bool>("action", "refuses", "serialNumber", "applied", "fails");
    QTest::newRow("calibrated") << "" << false << "" << 9 << false;
    QTest::newRow("calibrated twice") << "another calibrate()" << false << "" << 10 << false;
    QTest::newRow("second result refused") << "refused calibrate()" << false << "" << 9 << false;
    QTest::newRow("recalibrated") << "Recalibrate" << false << "" << 9 << false;
    QTest::newRow("recalibration cancelled") << "cancelled Recalibrate" << false << "" << 0 << true;
    QTest::newRow("calibration refused after the reconnection") << "" << true << "" << 9 << true;
    QTest::newRow("another device") << "" << false << "another" << 0 << false;
}

void TestEyetechCalibrationWidget::reconnect_restores_the_calibration() {
    QFETCH(const QString, action);
    QFETCH(const bool, refuses);
    QFETCH(const QString, serialNumber);
    QFETCH(const bool, fails);
    int createdCount = 0;
    int result = 0;
    int applied = 0;
    script_->QLCalibration_Initialize = [](int, int calibration, int) { return calibration == 0 ? 3 : 0; };
    script_->QLCalibration_Create = [&](int, int *calibration) { return *calibration = 9 + createdCount++, 0; };
    script_->QLDevice_ApplyCalibration = [&](int, int calibration) { return applied = calibration, result; };
    calibrate();
    if (!action.isEmpty()) {
        result = action.startsWith("refused") ? 4 : 0;
        act(action);
        QTRY_COMPARE(results_.size(), 2);
    }
    results_.clear();
    applied = 0;

    // The device was plugged in again.
    script_->QLDevice_GetInfo = [&](int, quicklink2::QLDeviceInfo *info) {
        qstrcpy(info->serialNumber, qPrintable(serialNumber));
        return 0;
    };
    script_->QLDevice_Enumerate = [](int *count, int *devices) { return *devices = 8, *count = 1, 0; };
    result = refuses ? 4 : 0;
    if (fails)
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("cannot be applied again"));
    tracker_->reconnect();
    QCOMPARE(tracker_->deviceId(), 8);
    QTEST(applied, "applied");
    QCOMPARE(results_, fails ? QList<CalibrationResult>{CalibrationResult::Failed} : QList<CalibrationResult>());
}

void TestEyetechCalibrationWidget::failed_target_is_repeated() {
    statuses_ = {1, 5, 5};
    calibrate();
    QCOMPARE(times_.size(), 3);
    // Intended: the second measurement of the first target gets the scores of the second target.
    const QImage shown = screen()->grab().toImage();
    QCOMPARE(shown.pixelColor(100, 100 - 8), QColor("#C30"));
    QCOMPARE(shown.pixelColor(400, 300 - 8), QColor("#3C0"));
}

void TestEyetechCalibrationWidget::refused_target_is_explained_on_the_screen() {
    int refusals = 0;
    int whiteAtFirst = 0;
    int whiteAtLast = 0;
    script_->QLCalibration_GetStatus = [&](int, int, int *status) {
        if (refusals == 1)
            whiteAtFirst = whiteCount();
        if (refusals == 10)
            whiteAtLast = whiteCount();
        return *status = ++refusals > 10 ? 0 : 5, 0;
    };
    QTest::ignoreMessage(QtWarningMsg, "The device keeps refusing the calibration target 1");
    calibrate();
    QVERIFY2(whiteAtLast > whiteAtFirst + 100, qPrintable(QString("%1, %2").arg(whiteAtFirst).arg(whiteAtLast)));
    QCOMPARE(results_, QList<CalibrationResult>{CalibrationResult::Done});
}

void TestEyetechCalibrationWidget::failure_is_explained_on_the_screen_data() {
    dataColumns<int, int, int, int, bool>("initialised", "targets", "count", "applied", "calibrates");
    QTest::newRow("initialisation fails") << 1 << 0 << 2 << 0 << false;
    QTest::newRow("initialisation returns another result") << 2 << 0 << 2 << 0 << true;
    QTest::newRow("too many targets") << 0 << 11 << 25 << 0 << false;
    QTest::newRow("fetching targets fails") << 0 << 10 << 20 << 0 << false;
    QTest::newRow("count above the maximum") << 0 << 0 << 1000000 << 0 << true;
    QTest::newRow("negative count") << 0 << 0 << -1 << 0 << true;
    QTest::newRow("the result is refused") << 0 << 0 << 0 << 4 << false;
}

void TestEyetechCalibrationWidget::failure_is_explained_on_the_screen() {
    QFETCH(const int, initialised);
    QFETCH(const int, targets);
    QFETCH(const int, count);
    QFETCH(const int, applied);
    QFETCH(const bool, calibrates);
    script_->QLDevice_ApplyCalibration = [&](int, int) { return applied; };
    script_->QLCalibration_Initialize = [&](int, int, int) { return initialised; };
    script_->QLCalibration_GetTargets = [&](int, int *number, quicklink2::QLTarget *) {
        return *number = count, targets;
    };
    if (targets != 0)
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("GetTargets returned " + QString::number(targets)));
    calibrate();
    QCOMPARE(calibratedCount_ == 1, calibrates || applied != 0);
    QCOMPARE(results_, QList<CalibrationResult>{calibrates ? CalibrationResult::Done : CalibrationResult::Failed});
    const bool isApplied = initialised != 1 && targets == 0;
    QCOMPARE(script_->takeCalls().last(), isApplied ? "QLDevice_ApplyCalibration" : "QLCalibration_Cancel");
    QCOMPARE(button("Recalibrate") != nullptr, calibrates);
    if (calibrates)
        return;
    QVERIFY(whiteCount() > 100);
    QTest::mouseClick(screen(), Qt::LeftButton);
    QVERIFY(!screen());
    QCOMPARE(results_.size(), 1);
}

void TestEyetechCalibrationWidget::can_be_cancelled_at_any_time_data() {
    dataColumns<QString, int, int>("action", "status", "polls");
    for (const char *action : {"Escape", "stopCalibration()", "stop()", "reconnect()", "another calibrate()",
                               "quitting", "losing the device", "destroying the tracker"}) {
        QTest::addRow("%s during the move to a target", action) << action << 1 << 0;
        QTest::addRow("%s during a measurement", action) << action << 1 << 4;
        QTest::addRow("%s while a target is repeated", action) << action << 5 << 9;
    }
}

void TestEyetechCalibrationWidget::can_be_cancelled_at_any_time() {
    QFETCH(const QString, action);
    QFETCH(const int, status);
    QFETCH(const int, polls);
    eyetech::CalibrationSequence::timings.animationMs = 90;
    const bool restarts = action.startsWith("another");
    const bool isLost = action.startsWith("losing");
    bool acted = false;
    const auto actLater = [&] {
        QTimer::singleShot(0, this, [&] {
            acted = true;
            act(action);
        });
    };
    int count = 0;
    script_->QLCalibration_GetStatus = [&](int, int, int *state) {
        if (++count == polls)
            actLater();
        return *state = acted && restarts ? 0 : status, 0;
    };
    if (polls == 0)
        QTimer::singleShot(0, this, actLater);
    if (status == 5)
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("keeps refusing"));
    if (isLost)
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("the device was lost"));
    calibrate();
    QVERIFY(acted);
    QCOMPARE(calibratedCount_, restarts ? 1 : 0);
    QList<CalibrationResult> expected{isLost ? CalibrationResult::Failed : CalibrationResult::Cancelled};
    if (restarts)
        expected << CalibrationResult::Done;
    QCOMPARE(results_, expected);
    QCOMPARE(screen() != nullptr, restarts || isLost);
}

/// calibrate() during a calibration replaces the running one, without nested calls.
void TestEyetechCalibrationWidget::nested_calibrations_do_not_accumulate() {
    int depth = 0;
    int maxDepth = 0;
    int left = 20;
    script_->QLCalibration_Calibrate = [&](int, int, int, bool) {
        if (left-- > 0)
            QTimer::singleShot(0, this, [&] {
                maxDepth = std::max(maxDepth, ++depth);
                tracker_->calibrate(area_);
                --depth;
            });
        return 0;
    };
    script_->QLCalibration_GetStatus = [&](int, int, int *status) { return *status = left < 0 ? 0 : 1, 0; };
    calibrate();
    QCOMPARE(maxDepth, 1);
    QCOMPARE(calibratedCount_, 1);
    QCOMPARE(results_.count(CalibrationResult::Cancelled), 20);
    QCOMPARE(results_.count(CalibrationResult::Done), 1);
}

OCELA_TEST(TestEyetechCalibrationWidget)
#include "tst_eyetech_calibration.moc"
