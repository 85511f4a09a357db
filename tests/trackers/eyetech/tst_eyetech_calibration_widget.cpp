#include "support/test_main.h"
#include "toolkit/global_keyboard.h"
#include "trackers/eyetech/eyetech_calibration_widget.h"
#include "trackers/eyetech/eyetech_grabber.h"
#include "trackers/eyetech/script.h"

#include <QApplication>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <memory>

// The macro declares a function, which must not end up in a namespace.
static void initResources() {
    Q_INIT_RESOURCE(ocela);
}

using Calls = QList<QByteArray>;

/// Calibrations of a tracker whose device has two targets, 1 and 2, and does what each test says.
class TestEyetechCalibrationWidget : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { initResources(); }
    void init();
    void cleanup() { tracker_.reset(); }

    void runs_the_whole_sequence();
    void shows_what_the_eyes_did();
    void recalibrates_and_saves();
    void failed_target_is_tried_again();
    void device_that_refuses_closes_the_screen_data();
    void device_that_refuses_closes_the_screen();
    void can_be_cancelled_at_any_time_data();
    void can_be_cancelled_at_any_time();
    void calibrations_do_not_pile_up();

private:
    void attachDevice();
    /// As a call over HTTP arrives: from the event loop.
    void calibrate();
    void act(const QString &what);
    [[nodiscard]] QWidget *screen() const;
    [[nodiscard]] QPushButton *button(const QString &text) const;

    QTemporaryDir folder_;
    std::unique_ptr<EyetechGrabber> tracker_;
    Script *script_ = nullptr;
    int calibratedCount_ = 0;
    QList<int> statuses_;  ///< the targets', a call each; then 0
    QList<int> times_;     ///< that the device was told to look for
    const QRect area_{40, 30, 500, 400};
};

void TestEyetechCalibrationWidget::attachDevice() {
    script_->QLDevice_Enumerate = [](int *count, int *devices) { return *devices = 7, *count = 1, 0; };
    script_->QLDevice_GetStatus = [](int, int *status) { return *status = 2, 0; };
    script_->QLCalibration_Create = [](int, int *calibration) { return *calibration = 9, 0; };
    script_->QLCalibration_Initialize = [](int device, int calibration, int type) {
        return calibration == 0 ? 3 : (device == 7 && calibration == 9 && type == 0 ? 0 : 1);
    };
    script_->QLCalibration_GetTargets = [](int, int *count, QLTarget *targets) {
        targets[0] = {1, 20, 25};
        targets[1] = {2, 80, 75};
        return *count = 2, 0;
    };
    script_->QLCalibration_Calibrate = [this](int, int, int ms, bool) { return times_ << ms, 0; };
    script_->QLCalibration_GetStatus = [this](int, int, int *status) {
        *status = statuses_.isEmpty() ? 0 : statuses_.takeFirst();
        return 0;
    };
    script_->QLCalibration_GetScoring = [](int, int target, int eye, QLScore *score) {
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
    tracker_ = std::make_unique<EyetechGrabber>(folder_.path(), nullptr);
    EyetechCalibrationWidget::timings = {0, 100, 499};
    connect(tracker_.get(), &EyetrackerInterface::calibrated, this, [this] { ++calibratedCount_; });
    (void)script_->takeCalls();
}

void TestEyetechCalibrationWidget::calibrate() {
    QTimer::singleShot(0, this, [this] {
        tracker_->calibrate(area_);
        QCoreApplication::quit();
    });
    QCoreApplication::exec();
}

void TestEyetechCalibrationWidget::act(const QString &what) {
    const QHash<QString, std::function<void()>> acts{
        {"Escape", [] { Q_EMIT GlobalKeyboard::Instance()->keyPressed(Qt::Key_Escape); }},
        {"stopCalibration()", [this] { tracker_->stopCalibration(); }},
        {"stop()", [this] { tracker_->stop(); }},
        {"another calibrate()", [this] { tracker_->calibrate(area_); }},
        {"quitting", [] { QCoreApplication::quit(); }},
        {"the tracker's end", [this] { tracker_.reset(); }},
    };
    acts[what]();
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
    QCOMPARE(times_, (QList<int>{500, 500}));  // never less
    QCOMPARE(calibratedCount_, 1);
    QCOMPARE(tracker_->calibratedArea(), area_);
    QVERIFY(screen() && screen()->geometry() == area_);
}

void TestEyetechCalibrationWidget::shows_what_the_eyes_did() {
    calibrate();
    const auto pixel = [&](int x, int y) { return screen()->grab().toImage().pixelColor(x, y); };
    QCOMPARE(pixel(250, 20), QColor("#333"));
    QCOMPARE(pixel(100, 100 + 6), QColor("#3C0"));  // beside the dot in the middle
    QCOMPARE(pixel(100, 100 - 17), QColor("#FFF"));
    QCOMPARE(pixel(400, 300 + 6), QColor("#C30"));
    QCOMPARE(pixel(50, 100), QColor("#3C0"));    // where the left eye looked
    QVERIFY(pixel(370, 300) != QColor("#333"));  // the line to where the right eye looked

    EyeTrackingSample sample;
    sample.valid = sample.r_valid = true;
    sample.x = 50;
    sample.y = 200;
    tracker_->addSample(sample);
    QVERIFY(pixel(250, 395).red() > 150);      // the gaze, held at the edge
    QVERIFY(pixel(10, 10).red() > 0x33 + 20);  // the lost eye's side
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
    QCOMPARE(script_->takeCalls().last(), QByteArray("QLCalibration_Finalize"));
    // A key that comes later must not undo what was saved.
    act("Escape");
    QCOMPARE(script_->takeCalls(), Calls());
}

void TestEyetechCalibrationWidget::failed_target_is_tried_again() {
    statuses_ = {1, 5, 5};
    calibrate();
    QCOMPARE(times_.size(), 3);
    // The second pass over the first target has the second target's scores.
    const QImage shown = screen()->grab().toImage();
    QCOMPARE(shown.pixelColor(100, 100 + 6), QColor("#C30"));
    QCOMPARE(shown.pixelColor(400, 300 + 6), QColor("#3C0"));
}

void TestEyetechCalibrationWidget::device_that_refuses_closes_the_screen_data() {
    QTest::addColumn<int>("initialised");
    QTest::addColumn<int>("targets");
    QTest::addColumn<int>("count");
    QTest::addColumn<bool>("calibrates");
    QTest::newRow("initialising fails") << 1 << 0 << 2 << false;
    QTest::newRow("initialising says something else") << 2 << 0 << 2 << true;
    QTest::newRow("too many targets") << 0 << 11 << 25 << false;
    QTest::newRow("no answer to the call for targets") << 0 << 10 << 20 << false;
    QTest::newRow("count beyond the buffer") << 0 << 0 << 1000000 << true;
    QTest::newRow("negative count") << 0 << 0 << -1 << true;
}

void TestEyetechCalibrationWidget::device_that_refuses_closes_the_screen() {
    QFETCH(const int, initialised);
    QFETCH(const int, targets);
    QFETCH(const int, count);
    QFETCH(const bool, calibrates);
    script_->QLCalibration_Initialize = [&](int, int, int) { return initialised; };
    script_->QLCalibration_GetTargets = [&](int, int *number, QLTarget *) { return *number = count, targets; };
    calibrate();
    QCOMPARE(calibratedCount_ == 1, calibrates);
    QCOMPARE(screen() != nullptr, calibrates);
    QCOMPARE(script_->takeCalls().last(), calibrates ? "QLDevice_ApplyCalibration" : "QLCalibration_Cancel");
}

void TestEyetechCalibrationWidget::can_be_cancelled_at_any_time_data() {
    QTest::addColumn<QString>("way");
    QTest::addColumn<int>("status");
    QTest::addColumn<int>("polls");
    for (const char *way :
         {"Escape", "stopCalibration()", "stop()", "another calibrate()", "quitting", "the tracker's end"}) {
        QTest::addRow("%s on the way to a target", way) << way << 1 << 0;
        QTest::addRow("%s while the device looks", way) << way << 1 << 4;
        QTest::addRow("%s while the device fails again and again", way) << way << 5 << 9;
    }
}

void TestEyetechCalibrationWidget::can_be_cancelled_at_any_time() {
    QFETCH(const QString, way);
    QFETCH(const int, status);
    QFETCH(const int, polls);
    EyetechCalibrationWidget::timings.animationMs = 90;
    const bool begunAgain = way.startsWith("another");
    bool acted = false;
    const auto actLater = [&] {
        QTimer::singleShot(0, this, [&] {
            acted = true;
            act(way);
        });
    };
    int count = 0;
    script_->QLCalibration_GetStatus = [&](int, int, int *state) {
        if (++count == polls)
            actLater();
        return *state = acted && begunAgain ? 0 : status, 0;
    };
    if (polls == 0)
        QTimer::singleShot(0, this, actLater);
    calibrate();
    QVERIFY(acted);
    QCOMPARE(calibratedCount_, begunAgain ? 1 : 0);
    QCOMPARE(screen() != nullptr, begunAgain);
}

/// Each call that comes while one is under way takes its place, on the same stack.
void TestEyetechCalibrationWidget::calibrations_do_not_pile_up() {
    int depth = 0;
    int deepest = 0;
    int left = 20;
    script_->QLCalibration_Calibrate = [&](int, int, int, bool) {
        if (left-- > 0)
            QTimer::singleShot(0, this, [&] {
                deepest = std::max(deepest, ++depth);
                tracker_->calibrate(area_);
                --depth;
            });
        return 0;
    };
    script_->QLCalibration_GetStatus = [&](int, int, int *status) { return *status = left < 0 ? 0 : 1, 0; };
    calibrate();
    QCOMPARE(deepest, 1);
    QCOMPARE(calibratedCount_, 1);
}

OCELA_TEST(TestEyetechCalibrationWidget)
#include "tst_eyetech_calibration_widget.moc"
