#include "asee_fixture.h"
#include "support/test_main.h"
#include "trackers/asee/asee_pro.h"
#include "trackers/asee/calibration_widget.h"

#include <QElapsedTimer>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <condition_variable>
#include <thread>

Q_DECLARE_METATYPE(CalibrationPace)

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
    void leaves_with_the_tracker();

private:
    void open(CalibrationPace pace);
    void press(Qt::Key key) { QTest::keyClick(widget_.get(), key); }
    [[nodiscard]] bool calibrates();
    [[nodiscard]] QByteArray coefficients() const { return contentOf(folder_->filePath("coefficient.dat")); }

    std::unique_ptr<QTemporaryDir> folder_;
    std::unique_ptr<CalibrationWidget> widget_;
};

namespace {

using std::chrono::milliseconds;

constexpr CalibrationPace quick{milliseconds(1), milliseconds(0)};
constexpr CalibrationPace forEver{milliseconds(60000), milliseconds(60000)};

const QStringList points{
    "point 1 (0.50, 0.50)", "point 2 (0.85, 0.50)", "point 3 (0.15, 0.85)",
    "point 4 (0.50, 0.85)", "point 5 (0.85, 0.85)", "point 6 (0.15, 0.15)",
    "point 7 (0.50, 0.15)", "point 8 (0.85, 0.15)", "point 9 (0.15, 0.50)",
};

/// A call into the library that takes until it is let go.
class Hold {
public:
    void wait() {
        std::unique_lock<std::mutex> lock(mutex_);
        changed_.wait(lock, [this] { return released_; });
    }
    void release() {
        const std::lock_guard<std::mutex> lock(mutex_);
        released_ = true;
        changed_.notify_all();
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    bool released_ = false;
};

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

bool TestCalibrationWidget::calibrates() {
    (void)takeCalls();
    press(Qt::Key_Space);
    return QTest::qWaitFor([&] { return library().wasCalled("score") && !CalibWorker::isBusy(); }, 60000) &&
           takeCalls().filter("point ") == points && coefficients().startsWith("measured");
}

void TestCalibrationWidget::visits_nine_points_centre_first_and_saves() {
    const QSignalSpy moves(widget_.get(), &CalibrationWidget::signal_calib_move_point);
    press(Qt::Key_A);
    press(Qt::Key_Space);
    press(Qt::Key_Space);
    QTRY_VERIFY(library().wasCalled("score") && !CalibWorker::isBusy());
    QCOMPARE(takeCalls(), QStringList("start calibration 9") + points +
                              QStringList({"compute", "complete", "score", "start tracking measured"}));
    QCOMPARE(coefficients().size(), 1024);
    QTRY_COMPARE(moves.count(), 9 * 29);
    QCOMPARE(moves.first().first().toFloat(), 0.01F);
    QCOMPARE(moves.last().first().toFloat(), 0.29F);

    press(Qt::Key_Space);  // the thread waits for Escape
    press(Qt::Key_Escape);
    QVERIFY(!widget_->isVisible());
    QCOMPARE(takeCalls(), QStringList());
    widget_->show();
    QVERIFY(calibrates());
}

void TestCalibrationWidget::what_the_library_refuses_data() {
    QTest::addColumn<QString>("function");
    QTest::addColumn<QStringList>("calls");  // behind the points
    QTest::addColumn<int>("bytes");
    QTest::newRow("computing") << "compute" << QStringList{"compute", "complete", "score"} << 0;
    QTest::newRow("its own coefficients")
        << "start tracking" << QStringList{"compute", "complete", "score", "start tracking measured"} << 1024;
}

void TestCalibrationWidget::what_the_library_refuses() {
    QFETCH(QString, function);
    library().setResult(function.toStdString(), 108);
    press(Qt::Key_Space);
    QTRY_VERIFY(library().wasCalled("score") && !CalibWorker::isBusy());
    QTEST(QStringList(takeCalls().mid(1 + points.size())), "calls");
    QTEST(coefficients().size(), "bytes");
}

void TestCalibrationWidget::can_be_left_at_any_moment_data() {
    QTest::addColumn<QString>("moment");  // the call of the library that was made last
    QTest::addColumn<CalibrationPace>("pace");
    QTest::addColumn<QString>("way");
    const CalibrationPace stuckOnTheWay{milliseconds(1), milliseconds(60000)};
    for (const char *way : {"Escape", "Escape twice", "close", "delete"}) {
        QTest::addRow("%s before the start", way) << QString() << quick << way;
        QTest::addRow("%s at once after Space", way) << "Space" << quick << way;
        QTest::addRow("%s before the first point is measured", way) << "start calibration 9" << forEver << way;
        QTest::addRow("%s while a point is measured", way) << "point 1 (0.50, 0.50)" << quick << way;
        QTest::addRow("%s on the way to the next point", way) << "point 1 (0.50, 0.50)" << stuckOnTheWay << way;
    }
}

void TestCalibrationWidget::can_be_left_at_any_moment() {
    QFETCH(QString, moment);
    QFETCH(CalibrationPace, pace);
    QFETCH(QString, way);
    open(pace);
    library().pointsFinish = pace.moveStep != quick.moveStep;
    if (!moment.isEmpty())
        press(Qt::Key_Space);
    if (moment.contains(' '))
        QTRY_VERIFY(library().wasCalled(moment.toStdString()));

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
        QCOMPARE(calls.mid(calls.size() - 2), QStringList({"cancel", "complete"}));
    QCOMPARE(coefficients(), QByteArray());

    library().pointsFinish = true;
    if (way == "delete" || pace.moveStep != quick.moveStep)
        open(quick);
    widget_->show();
    QVERIFY(calibrates());
}

void TestCalibrationWidget::library_that_hangs_does_not_hold_the_screen() {
    Hold computing;
    library().whileComputing = [&] { computing.wait(); };
    press(Qt::Key_Space);
    QTRY_VERIFY(library().wasCalled("compute"));
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("library holds the calibration up"));
    QElapsedTimer timer;
    timer.start();
    press(Qt::Key_Escape);
    widget_.reset();
    QVERIFY(timer.elapsed() < 1000);

    open(quick);
    (void)takeCalls();
    press(Qt::Key_Space);  // the library is still busy
    QCoreApplication::processEvents();
    computing.release();
    QTRY_VERIFY(!CalibWorker::isBusy());
    QCOMPARE(takeCalls(), QStringList({"complete", "score"}));
    QCOMPARE(coefficients(), QByteArray());
    library().whileComputing = nullptr;
    QVERIFY(calibrates());
}

void TestCalibrationWidget::late_callbacks_find_nobody() {
    library().pointsFinish = false;
    press(Qt::Key_Space);
    QTRY_VERIFY(library().wasCalled("point 1 (0.50, 0.50)"));
    std::atomic<bool> running{true};
    std::thread device([&] {
        while (running) {
            library().sendProgress(50);
            std::this_thread::yield();
        }
    });
    widget_.reset();
    running = false;
    device.join();
    library().sendProgress(100);
    library().sendFinish();
    QCoreApplication::processEvents();
}

void TestCalibrationWidget::leaves_with_the_tracker() {
    library().pointsFinish = false;
    auto tracker = std::make_unique<aSeePro>(folder_->path(), nullptr);
    tracker->calibrate(QRect(0, 0, 640, 480));
    const auto screen = [&]() -> QWidget * {
        for (QWidget *window : QApplication::topLevelWidgets()) {
            if (window != widget_.get() && window->isVisible())
                return window;
        }
        return nullptr;
    };
    QVERIFY(screen());
    QTest::keyClick(screen(), Qt::Key_Space);
    QTRY_VERIFY(library().wasCalled("start calibration 9"));
    tracker->stopCalibration();
    QVERIFY(!screen());
    tracker->stopCalibration();

    tracker->calibrate(QRect(0, 0, 640, 480));
    QTest::keyClick(screen(), Qt::Key_Space);
    QTRY_VERIFY(CalibWorker::isBusy());
    tracker.reset();
    QVERIFY(!screen());
    QVERIFY(!CalibWorker::isBusy());
}

OCELA_TEST(TestCalibrationWidget)
#include "tst_calibration_widget.moc"
