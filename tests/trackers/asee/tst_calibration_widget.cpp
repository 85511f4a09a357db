#include "asee_fixture.h"
#include "support/test_main.h"
#include "trackers/asee/asee_pro.h"
#include "trackers/asee/calibration_widget.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <future>
#include <thread>

Q_DECLARE_METATYPE(CalibrationPace)
Q_DECLARE_METATYPE(std::string)

/// A calibration from the first key to the coefficients, and every way out of it.
class TestCalibrationWidget : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void visits_nine_points_centre_first_and_saves();
    void what_the_library_refuses_data();
    void what_the_library_refuses();
    void can_be_left_at_any_moment_data();
    void can_be_left_at_any_moment();
    void library_that_hangs_does_not_hold_the_screen();
    void late_callbacks_find_nobody();
    void goes_with_the_tracker();

private:
    void open(CalibrationPace pace);
    void press(Qt::Key key) { QTest::keyClick(widget_.get(), key); }
    [[nodiscard]] QStringList callsOfACalibration();
    [[nodiscard]] QByteArray coefficients() const { return contentOf(folder_->filePath("coefficient.dat")); }

    std::unique_ptr<QTemporaryDir> folder_;
    std::unique_ptr<CalibrationWidget> widget_;
};

namespace {

using std::chrono::milliseconds;

constexpr CalibrationPace quick{milliseconds(1), milliseconds(0)};

const QStringList measuring{
    "start_calibration 9",
    "start_calibration_point 1 50 50",
    "start_calibration_point 2 85 50",
    "start_calibration_point 3 15 85",
    "start_calibration_point 4 50 85",
    "start_calibration_point 5 85 85",
    "start_calibration_point 6 15 15",
    "start_calibration_point 7 50 15",
    "start_calibration_point 8 85 15",
    "start_calibration_point 9 15 50",
    "compute_calibration",
    "complete_calibration",
    "get_calibration_score",
};
const char *const firstPoint = "start_calibration_point 1 50 50";

}  // namespace

void TestCalibrationWidget::init() {
    library().reset();
    folder_ = std::make_unique<QTemporaryDir>();
    open(quick);
}

void TestCalibrationWidget::cleanup() {
    widget_.reset();
    QTRY_VERIFY(!CalibWorker::isBusy());
}

void TestCalibrationWidget::open(CalibrationPace pace) {
    widget_ = std::make_unique<CalibrationWidget>(nullptr, pace);
    widget_->setDataFolder(folder_->path() + '/');
    widget_->showOn(QRect(0, 0, 640, 480));
}

QStringList TestCalibrationWidget::callsOfACalibration() {
    (void)takeCalls();
    press(Qt::Key_Space);
    const auto ended = [] { return library().wasCalled("get_calibration_score") && !CalibWorker::isBusy(); };
    return QTest::qWaitFor(ended, 60000) ? takeCalls() : QStringList();
}

void TestCalibrationWidget::visits_nine_points_centre_first_and_saves() {
    const QSignalSpy moves(widget_.get(), &CalibrationWidget::signal_calib_move_point);
    press(Qt::Key_A);
    QCOMPARE(callsOfACalibration(), measuring + QStringList("start_tracking measured"));
    QCOMPARE(coefficients(), QByteArray("measured").leftJustified(1024, '\0'));
    QTRY_COMPARE(moves.count(), 9 * 29);
    QCOMPARE(moves.first().first().toFloat(), 0.01F);
    QCOMPARE(moves.last().first().toFloat(), 0.29F);

    press(Qt::Key_Space);  // the thread waits for Escape
    press(Qt::Key_Escape);
    QVERIFY(!widget_->isVisible());
    QCOMPARE(takeCalls(), QStringList());
}

void TestCalibrationWidget::what_the_library_refuses_data() {
    QTest::addColumn<std::string>("function");
    QTest::addColumn<QStringList>("calls");
    QTest::addColumn<int>("bytes");
    QTest::newRow("computing") << std::string("_7i_compute_calibration") << measuring << 0;
    QTest::newRow("its own coefficients")
        << std::string("_7i_start_tracking") << measuring + QStringList("start_tracking measured") << 1024;
}

void TestCalibrationWidget::what_the_library_refuses() {
    QFETCH(std::string, function);
    library().results[function] = 108;
    QTEST(callsOfACalibration(), "calls");
    QTEST(coefficients().size(), "bytes");
}

void TestCalibrationWidget::can_be_left_at_any_moment_data() {
    QTest::addColumn<QString>("lastCall");
    QTest::addColumn<CalibrationPace>("pace");
    QTest::addColumn<QString>("way");
    const CalibrationPace stuckBefore{milliseconds(60000), milliseconds(60000)};
    const CalibrationPace stuckBehind{milliseconds(1), milliseconds(60000)};
    for (const char *way : {"Escape", "Escape twice", "close", "delete"}) {
        QTest::addRow("%s before the start", way) << QString() << quick << way;
        QTest::addRow("%s at once after Space", way) << "none yet" << quick << way;
        QTest::addRow("%s before the first point is measured", way) << measuring.first() << stuckBefore << way;
        QTest::addRow("%s while a point is measured", way) << firstPoint << quick << way;
        QTest::addRow("%s on the way to the next point", way) << firstPoint << stuckBehind << way;
    }
}

void TestCalibrationWidget::can_be_left_at_any_moment() {
    QFETCH(QString, lastCall);
    QFETCH(CalibrationPace, pace);
    QFETCH(QString, way);
    open(pace);
    library().pointsFinish = pace.moveStep != quick.moveStep;
    if (!lastCall.isEmpty())
        press(Qt::Key_Space);
    if (measuring.contains(lastCall))
        QTRY_VERIFY(library().wasCalled(lastCall.toStdString()));

    QElapsedTimer timer;
    timer.start();
    if (way == "delete")
        widget_.reset();
    else if (way == "close")
        widget_->close();
    else
        press(Qt::Key_Escape);
    if (way == "Escape twice")
        press(Qt::Key_Escape);
    QVERIFY(timer.elapsed() < 1000);
    QVERIFY(!CalibWorker::isBusy());
    const QStringList calls = takeCalls();
    if (!calls.isEmpty())
        QCOMPARE(calls.mid(calls.size() - 2), QList<QString>({"cancel_calibration", "complete_calibration"}));
    QCOMPARE(coefficients(), QByteArray());

    library().pointsFinish = true;
    if (way == "delete" || pace.moveStep != quick.moveStep)
        open(quick);
    widget_->show();
    QCOMPARE(callsOfACalibration().mid(0, measuring.size()), QList<QString>(measuring));
}

void TestCalibrationWidget::library_that_hangs_does_not_hold_the_screen() {
    std::promise<void> computed;
    library().whileComputing = [&] { computed.get_future().wait(); };
    press(Qt::Key_Space);
    QTRY_VERIFY(library().wasCalled("compute_calibration"));
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("library holds the calibration up"));
    QElapsedTimer timer;
    timer.start();
    press(Qt::Key_Escape);
    widget_.reset();
    QVERIFY(timer.elapsed() < 1000);

    open(quick);
    (void)takeCalls();
    press(Qt::Key_Space);  // the library is still busy
    computed.set_value();
    QTRY_VERIFY(!CalibWorker::isBusy());
    QCOMPARE(takeCalls(), QStringList({"complete_calibration", "get_calibration_score"}));
    QCOMPARE(coefficients(), QByteArray());
    library().whileComputing = nullptr;
    QVERIFY(!callsOfACalibration().isEmpty());
}

void TestCalibrationWidget::late_callbacks_find_nobody() {
    library().pointsFinish = false;
    press(Qt::Key_Space);
    QTRY_VERIFY(library().wasCalled(firstPoint));
    std::atomic<bool> running{true};
    std::thread device([&] {
        while (running)
            library().progress(1, 50, library().pointContext);
    });
    widget_.reset();
    running = false;
    device.join();
    library().progress(1, 100, library().pointContext);
    library().finish(1, 0, library().pointContext);
}

void TestCalibrationWidget::goes_with_the_tracker() {
    widget_.reset();
    library().pointsFinish = false;
    auto tracker = std::make_unique<aSeePro>(folder_->path(), nullptr);
    const auto isShown = [] { return !QApplication::topLevelWidgets().isEmpty(); };
    for (const bool isAsked : {true, false}) {
        tracker->calibrate(QRect(0, 0, 640, 480));
        QVERIFY(isShown());
        QTest::keyClick(QApplication::topLevelWidgets().first(), Qt::Key_Space);
        QTRY_VERIFY(library().wasCalled(firstPoint));
        if (isAsked)
            tracker->stopCalibration();
        else
            tracker.reset();
        QVERIFY(!CalibWorker::isBusy());
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!isShown());
        (void)takeCalls();
    }
}

OCELA_TEST(TestCalibrationWidget)
#include "tst_calibration_widget.moc"
