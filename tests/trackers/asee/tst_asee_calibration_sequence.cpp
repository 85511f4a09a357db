#include "asee_fixture.h"
#include "support/redirected.h"
#include "support/test_main.h"
#include "trackers/asee/asee_tracker.h"

#include <QElapsedTimer>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <future>
#include <thread>

Q_DECLARE_METATYPE(asee::CalibrationPace)

/// Tests a calibration from the first key press to the coefficients, and each way to cancel it.
class TestCalibrationWidget : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void visits_nine_points_centre_first_and_saves();
    void failed_calls_of_the_library_data();
    void failed_calls_of_the_library();
    void unsaved_calibration_is_used();
    void can_be_cancelled_at_any_time_data();
    void can_be_cancelled_at_any_time();
    void blocked_library_does_not_block_the_screen();
    void late_callbacks_are_ignored();
    void callbacks_of_a_cancelled_point_do_not_reach_the_next();
    void is_closed_by_the_tracker();

private:
    void open(asee::CalibrationPace pace);
    void press(Qt::Key key) { QTest::keyClick(widget_.get(), key); }
    [[nodiscard]] QStringList callsOfACalibration();
    [[nodiscard]] QByteArray coefficients() const { return readFile(folder_->filePath("coefficient.dat")); }

    std::unique_ptr<QTemporaryDir> folder_;
    std::unique_ptr<CalibrationWidget> widget_;
};

namespace {

using std::chrono::milliseconds;

constexpr milliseconds endTimeout(60000);
constexpr asee::CalibrationPace quick{milliseconds(1), milliseconds(0), endTimeout};

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
    QTRY_VERIFY_WITH_TIMEOUT(!CalibWorker::isBusy(), maxWaitMs);
}

void TestCalibrationWidget::open(asee::CalibrationPace pace) {
    widget_ = std::make_unique<CalibrationWidget>(nullptr, pace);
    widget_->setDataFolder(folder_->path() + '/');
    widget_->showOn(QRect(0, 0, 640, 480));
}

QStringList TestCalibrationWidget::callsOfACalibration() {
    (void)takeCalls();
    press(Qt::Key_Space);
    const auto ended = [] { return library().wasCalled("get_calibration_score") && !CalibWorker::isBusy(); };
    return QTest::qWaitFor(ended, maxWaitMs) ? takeCalls() : QStringList();
}

void TestCalibrationWidget::visits_nine_points_centre_first_and_saves() {
    const QSignalSpy moves(widget_.get(), &CalibrationWidget::signal_calib_move_point);
    const QSignalSpy ends(widget_.get(), &CalibrationWidget::ended);
    QFile output(folder_->filePath("output"));
    QVERIFY(output.open(QIODevice::WriteOnly));
    press(Qt::Key_A);
    {
        const Redirected printed(STDOUT_FILENO, output.handle());
        QCOMPARE(callsOfACalibration(), measuring + QStringList("start_tracking measured"));
    }
    QVERIFY(readFile(output.fileName()).contains("\n0.25 0.75\n"));  // the scores of the left and the right eye
    QCOMPARE(coefficients(), QByteArray("measured").leftJustified(1024, '\0'));
    QTRY_COMPARE_WITH_TIMEOUT(moves.count(), 9 * 29, maxWaitMs);
    QCOMPARE(moves.first().first().toFloat(), 0.01F);
    QCOMPARE(moves.last().first().toFloat(), 0.29F);

    QTRY_COMPARE_WITH_TIMEOUT(ends.count(), 1, maxWaitMs);
    QCOMPARE(widget_->hint().section('\n', 0, 1),
             QString("The calibration is finished and saved\nScores: left eye 0.25, right eye 0.75"));
    press(Qt::Key_Space);  // no effect, because the thread runs until Escape
    press(Qt::Key_Escape);
    QVERIFY(!widget_->isVisible());
    QCOMPARE(takeCalls(), QStringList());
    QCOMPARE(resultsIn(ends), QList<CalibrationResult>({CalibrationResult::Done}));
}

void TestCalibrationWidget::failed_calls_of_the_library_data() {
    dataColumns<QStringList, QStringList, int, QString>("functions", "calls", "bytes", "text");
    const QStringList refused{measuring[0], firstPoint, "cancel_calibration", "complete_calibration"};
    const QStringList complete = measuring + QStringList("start_tracking measured");
    dataRow("point", QStringList("_7i_start_calibration_point"), refused, 0,
            "failed\nThe tracker refused point 1 of 9 (error 108)");
    dataRow("start and point", QStringList{"_7i_start_calibration", "_7i_start_calibration_point"}, refused, 0,
            "failed\nThe tracker did not start the calibration (error 108)");
    dataRow("computation", QStringList("_7i_compute_calibration"), measuring, 0,
            "failed\nThe tracker could not compute the calibration (error 108)");
    dataRow("tracking with the new coefficients", QStringList("_7i_start_tracking"), complete, 1024,
            "failed\nThe tracker refused the new calibration (error 108)\nScores: left eye 0.25, right eye 0.75");
}

void TestCalibrationWidget::failed_calls_of_the_library() {
    QFETCH(QStringList, functions);
    QFETCH(QStringList, calls);
    QFETCH(QString, text);
    const QSignalSpy ends(widget_.get(), &CalibrationWidget::ended);
    for (const QString &function : functions)
        library().results[function.toStdString()] = 108;
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("calibration has failed: .* returned 108$"));
    press(Qt::Key_Space);
    QTRY_COMPARE_WITH_TIMEOUT(ends.count(), 1, maxWaitMs);
    QCOMPARE(takeCalls(), calls);
    QTEST(coefficients().size(), "bytes");
    QVERIFY2(widget_->hint().contains(text), qPrintable(widget_->hint()));
    press(Qt::Key_Escape);
    QCOMPARE(resultsIn(ends), QList<CalibrationResult>({CalibrationResult::Failed}));
}

void TestCalibrationWidget::unsaved_calibration_is_used() {
    const QSignalSpy ends(widget_.get(), &CalibrationWidget::ended);
    widget_->setDataFolder(folder_->filePath("missing/"));
    library().results["_7i_get_calibration_score"] = 108;
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^Cannot save the calibration to "));
    press(Qt::Key_Space);
    QTRY_COMPARE_WITH_TIMEOUT(ends.count(), 1, maxWaitMs);
    QVERIFY(library().wasCalled("start_tracking measured"));
    QCOMPARE(resultsIn(ends), QList<CalibrationResult>({CalibrationResult::Failed}));
    QCOMPARE(widget_->hint().section('\n', 0, -2), QString("The calibration is used, but not saved, see Ocela.log"));
}

void TestCalibrationWidget::can_be_cancelled_at_any_time_data() {
    dataColumns<QString, asee::CalibrationPace, QString>("lastCall", "pace", "action");
    const asee::CalibrationPace stuckBefore{milliseconds(60000), milliseconds(60000), endTimeout};
    const asee::CalibrationPace stuckAfter{milliseconds(1), milliseconds(60000), endTimeout};
    for (const char *action : {"Escape", "Escape twice", "close", "delete"}) {
        QTest::addRow("%s before the start", action) << QString() << quick << action;
        QTest::addRow("%s directly after Space", action) << "no call yet" << quick << action;
        QTest::addRow("%s before the first point is measured", action) << measuring.first() << stuckBefore << action;
        QTest::addRow("%s while a point is measured", action) << firstPoint << quick << action;
        QTest::addRow("%s during the move to the next point", action) << firstPoint << stuckAfter << action;
    }
}

void TestCalibrationWidget::can_be_cancelled_at_any_time() {
    QFETCH(QString, lastCall);
    QFETCH(asee::CalibrationPace, pace);
    QFETCH(QString, action);
    open(pace);
    const QSignalSpy ends(widget_.get(), &CalibrationWidget::ended);
    library().pointsFinish = pace.moveStep != quick.moveStep;
    if (!lastCall.isEmpty())
        press(Qt::Key_Space);
    if (measuring.contains(lastCall))
        QTRY_VERIFY_WITH_TIMEOUT(library().wasCalled(lastCall.toStdString()), maxWaitMs);

    QElapsedTimer timer;
    timer.start();
    if (action == "delete")
        widget_.reset();
    else if (action == "close")
        widget_->close();
    else
        press(Qt::Key_Escape);
    if (action == "Escape twice")
        press(Qt::Key_Escape);
    QVERIFY(timer.elapsed() < maxWaitMs / 2);
    QVERIFY(!CalibWorker::isBusy());
    QCOMPARE(resultsIn(ends), QList<CalibrationResult>({CalibrationResult::Cancelled}));
    const QStringList calls = takeCalls();
    if (!calls.isEmpty())
        QCOMPARE(calls.mid(calls.size() - 2), QList<QString>({"cancel_calibration", "complete_calibration"}));
    QCOMPARE(coefficients(), QByteArray());

    library().pointsFinish = true;
    if (action == "delete" || pace.moveStep != quick.moveStep)
        open(quick);
    widget_->show();
    QCOMPARE(callsOfACalibration().mid(0, measuring.size()), QList<QString>(measuring));
}

void TestCalibrationWidget::blocked_library_does_not_block_the_screen() {
    constexpr milliseconds shortEndTimeout(5000);
    open({milliseconds(1), milliseconds(0), shortEndTimeout});
    std::promise<void> computed;
    library().whileComputing = [&] { computed.get_future().wait(); };
    press(Qt::Key_Space);
    QTRY_VERIFY_WITH_TIMEOUT(library().wasCalled("compute_calibration"), maxWaitMs);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("blocks the calibration"));
    const QSignalSpy ends(widget_.get(), &CalibrationWidget::ended);
    QElapsedTimer timer;
    timer.start();
    press(Qt::Key_Escape);
    widget_.reset();
    QVERIFY(timer.elapsed() < 2 * shortEndTimeout.count());  // waits only once
    QCOMPARE(resultsIn(ends), QList<CalibrationResult>({CalibrationResult::Cancelled}));

    open(quick);
    (void)takeCalls();
    press(Qt::Key_Space);  // the library is still busy
    computed.set_value();
    QTRY_VERIFY_WITH_TIMEOUT(!CalibWorker::isBusy(), maxWaitMs);
    QCOMPARE(takeCalls(), QStringList({"complete_calibration", "get_calibration_score"}));
    QCOMPARE(coefficients(), QByteArray());
    library().whileComputing = nullptr;
    QVERIFY(!callsOfACalibration().isEmpty());
}

void TestCalibrationWidget::late_callbacks_are_ignored() {
    library().pointsFinish = false;
    press(Qt::Key_Space);
    QTRY_VERIFY_WITH_TIMEOUT(library().wasCalled(firstPoint), maxWaitMs);
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

void TestCalibrationWidget::callbacks_of_a_cancelled_point_do_not_reach_the_next() {
    library().pointsFinish = false;
    const QSignalSpy progress(widget_.get(), &CalibrationWidget::signal_calib_progress);
    const auto startFirstPoint = [this] {
        (void)takeCalls();
        press(Qt::Key_Space);
        return QTest::qWaitFor([] { return library().wasCalled(firstPoint); }, maxWaitMs);
    };
    QVERIFY(startFirstPoint());
    void *const cancelledPoint = library().pointContext;
    press(Qt::Key_Escape);
    widget_->show();
    QVERIFY(startFirstPoint());
    library().progress(1, 50, cancelledPoint);
    QCOMPARE(progress.count(), 0);
    library().progress(1, 50, library().pointContext);
    QCOMPARE(progress.count(), 1);
    library().finish(1, 0, cancelledPoint);
    constexpr int enoughForAnotherPointMs = 200;
    const auto continues = [] { return library().wasCalled(measuring[2].toStdString()); };
    QVERIFY(!QTest::qWaitFor(continues, enoughForAnotherPointMs));
}

void TestCalibrationWidget::is_closed_by_the_tracker() {
    widget_.reset();
    library().pointsFinish = false;
    auto tracker = std::make_unique<aSeePro>(folder_->path(), nullptr);
    for (const bool isAsked : {true, false}) {
        const QSignalSpy results(tracker.get(), &EyetrackerInterface::calibrationFinished);
        tracker->calibrate(QRect(0, 0, 640, 480));
        QVERIFY(calibrationScreen()->isVisible());
        QTest::keyClick(calibrationScreen(), Qt::Key_Space);
        QTRY_VERIFY_WITH_TIMEOUT(library().wasCalled(firstPoint), maxWaitMs);
        if (isAsked)
            tracker->stopCalibration();
        else
            tracker.reset();
        QVERIFY(!CalibWorker::isBusy());
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!calibrationScreen());
        QCOMPARE(resultsIn(results), QList<CalibrationResult>({CalibrationResult::Cancelled}));
        (void)takeCalls();
    }
}

OCELA_TEST(TestCalibrationWidget)
#include "tst_asee_calibration_sequence.moc"
