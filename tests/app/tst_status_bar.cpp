#include "app/status_bar.h"
#include "core/markers.h"
#include "support/fake_tracker.h"
#include "support/test_main.h"
#include "toolkit/settings/ui_language.h"

#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QRegularExpression>
#include <QScopeGuard>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QToolButton>
#include <QUrl>
#include <memory>
#include <thread>

/// Tests the status bar with a selected tracker and another one.
class TestStatusBar : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();

    void tells_whether_samples_arrive();
    void tells_when_the_connection_is_lost();
    void offers_to_reconnect_while_there_are_no_samples();
    void tells_how_a_calibration_ended_data();
    void tells_how_a_calibration_ended();
    void offers_to_validate_the_current_calibration();
    void shows_a_recording_and_its_file();
    void shows_a_marker_for_a_few_seconds();
    void shows_a_recovered_file_until_the_next_recording();
    void shows_a_recording_of_a_tracker_that_is_not_selected();
    void tells_why_a_recording_is_not_saved_until_it_is_saved();
    void opens_files_of_the_records_folder_in_the_viewer_data();
    void opens_files_of_the_records_folder_in_the_viewer();
    void long_texts_do_not_widen_the_bar();
    void shows_who_can_reach_the_program();
    void shows_a_problem_in_a_line_of_its_own();

    /// Called instead of a file manager or a browser.
    void open(const QUrl &url) { opened_ = url; }

private:
    /// Clicks on the button and returns the address that it opens.
    QUrl opened(const char *scheme, const char *name) {
        QDesktopServices::setUrlHandler(scheme, this, "open");
        button(name)->click();
        QDesktopServices::unsetUrlHandler(scheme);
        return opened_;
    }
    [[nodiscard]] QLabel &label(const QString &name) const { return *bar_->findChild<QLabel *>(name); }
    /// Returns the button if it is shown, otherwise null.
    [[nodiscard]] QToolButton *button(const QString &name) const;
    [[nodiscard]] QString trackerText() const { return label("trackerStatus").text(); }
    /// Returns an empty text if no recording is shown.
    [[nodiscard]] QString recordingText() const;

    UiLanguage language_;
    QTemporaryDir folder_;
    QUrl opened_;
    std::unique_ptr<FakeTracker> tracker_;
    std::unique_ptr<FakeTracker> other_;
    std::unique_ptr<StatusBar> bar_;
};

void TestStatusBar::initTestCase() {
    Q_INIT_RESOURCE(ocela);
    language_.use("en_US");
}

void TestStatusBar::init() {
    bar_.reset();
    tracker_ = std::make_unique<FakeTracker>();
    other_ = std::make_unique<FakeTracker>();
    bar_ = std::make_unique<StatusBar>();
    bar_->setLocale(QLocale("en_US"));
    bar_->addTracker(tracker_.get());
    bar_->addTracker(other_.get());
    bar_->setEyetracker(tracker_.get());
}

QString TestStatusBar::recordingText() const {
    const QLabel &text = label("recordingStatus");
    return text.isVisibleTo(bar_.get()) ? text.text() : QString();
}

QToolButton *TestStatusBar::button(const QString &name) const {
    auto *found = bar_->findChild<QToolButton *>(name);
    return found->isVisibleTo(bar_.get()) ? found : nullptr;
}

void TestStatusBar::tells_whether_samples_arrive() {
    tracker_->addSample({});  // does not count, because the tracker is not connected
    QCOMPARE(trackerText(), QString("Not connected: no device"));
    tracker_->setConnected(true);
    QCOMPARE(trackerText(), QString("Connected"));
    const QRegularExpression live("^Connected, [0-9.,]+ Hz, 50 % valid$");
    const auto isLive = [&] {
        for (const bool valid : {true, false}) {
            EyeTrackingSample sample;
            sample.valid = valid;
            tracker_->addSample(sample);
            QTest::qWait(1);
        }
        return live.match(trackerText()).hasMatch();
    };
    QTRY_VERIFY(isLive());
    QVERIFY(!button("reconnect"));
    const QRegularExpression silent("^Connected, but no samples for [1-9][0-9]* s$");
    QTRY_VERIFY(silent.match(trackerText()).hasMatch());
    bar_->setEyetracker(other_.get());
    QCOMPARE(trackerText(), QString("Not connected: no device"));
    bar_->setEyetracker(nullptr);
    QCOMPARE(trackerText(), QString());
}

void TestStatusBar::tells_when_the_connection_is_lost() {
    tracker_->setConnected(true);
    tracker_->setConnected(false);
    QCOMPARE(trackerText(), QString("Not connected: connection lost"));
    bar_->setEyetracker(tracker_.get());
    QCOMPARE(trackerText(), QString("Not connected: no device"));
}

void TestStatusBar::offers_to_reconnect_while_there_are_no_samples() {
    tracker_->setConnected(true);
    tracker_->setConnected(false);
    tracker_->startRecord(folder_.filePath("kept.csv"));
    button("reconnect")->click();
    QCOMPARE(tracker_->calls, QStringList({"stop", "start"}));
    QVERIFY(tracker_->isRecording());
    QCOMPARE(trackerText(), QString("Not connected: no device"));  // the reason of this attempt
    tracker_->setConnected(true);
    QVERIFY(!button("reconnect"));
    QTRY_VERIFY(button("reconnect"));  // connected, but silent
    bar_->setEyetracker(nullptr);
    QVERIFY(!button("reconnect"));
    tracker_->discardRecord();
}

void TestStatusBar::tells_how_a_calibration_ended_data() {
    dataColumns<EyetrackerInterface::CalibrationResult, QString, QByteArray>("result", "text", "validation");
    using Result = EyetrackerInterface::CalibrationResult;
    const QByteArray page = "http://localhost:3735/validate.html";
    QTest::newRow("done") << Result::Done << "Calibration done. Connected" << page;
    QTest::newRow("failed") << Result::Failed << "Calibration failed. Connected" << QByteArray();
    QTest::newRow("cancelled") << Result::Cancelled << "Calibration cancelled. Connected" << QByteArray();
    QTest::newRow("unknown") << Result::Unknown << "Calibration result unknown. Connected" << page;
}

void TestStatusBar::tells_how_a_calibration_ended() {
    QFETCH(EyetrackerInterface::CalibrationResult, result);
    tracker_->setConnected(true);
    Q_EMIT tracker_->calibrationFinished(EyetrackerInterface::CalibrationResult::Done);
    Q_EMIT tracker_->calibrationFinished(result);
    QTEST(trackerText(), "text");
    QTEST(button("validate") ? opened("http", "validate").toEncoded() : QByteArray(), "validation");
    bar_->setEyetracker(other_.get());
    QCOMPARE(trackerText(), QString("Not connected: no device"));
}

void TestStatusBar::offers_to_validate_the_current_calibration() {
    const auto calibrate = [&] { Q_EMIT tracker_->calibrationFinished(FakeTracker::CalibrationResult::Done); };
    const auto isOffered = [&] { return button("validate") != nullptr; };
    calibrate();
    QVERIFY(!isOffered());  // not connected
    tracker_->setConnected(true);
    QVERIFY(isOffered());
    Q_EMIT tracker_->calibrationStarted();
    QVERIFY(!isOffered());
    QCOMPARE(trackerText(), QString("Connected"));  // no longer the earlier result
    calibrate();
    QVERIFY(isOffered());
    tracker_->setConnected(false);
    tracker_->setConnected(true);
    QVERIFY(!isOffered());
    calibrate();
    bar_->setEyetracker(other_.get());
    other_->setConnected(true);
    QVERIFY(!isOffered());
    bar_->setEyetracker(tracker_.get());
    QVERIFY(!isOffered());
    calibrate();
    bar_->setDashboardAvailable(false);
    QVERIFY(!isOffered());
    bar_->setDashboardAvailable(true);
    QVERIFY(isOffered());
    QTRY_VERIFY(button("reconnect"));  // connected, but silent
    QVERIFY(!isOffered());
}

void TestStatusBar::shows_a_recording_and_its_file() {
    QCOMPARE(recordingText(), QString());
    tracker_->startRecord(folder_.filePath("a b.csv"));
    QCOMPARE(recordingText(), QString("Recording 00:00:00, 0 samples"));
    tracker_->addSample({});
    tracker_->addSample({});
    QTRY_COMPARE(recordingText(), QString("Recording 00:00:00, 2 samples"));
    QVERIFY(!button("openFolder"));
    tracker_->stopRecord();
    QCOMPARE(recordingText(), QString("Saved a b.csv, 2 samples, 00:00"));
    QCOMPARE(opened("file", "openFolder"), QUrl::fromLocalFile(folder_.path()));
}

void TestStatusBar::shows_a_marker_for_a_few_seconds() {
    Markers markers(nullptr);
    markers.setTrackers({tracker_.get(), other_.get()});
    connect(&markers, &Markers::added, bar_.get(), &StatusBar::showMarker);
    markers.add("F9");
    QTRY_COMPARE(recordingText(), QString("Marker set; no recording is running"));
    other_->startRecord(folder_.filePath("other.csv"));
    markers.add("F9");
    QTRY_COMPARE(recordingText(), QString("Recording (fake) 00:00:00, 0 samples, 1 marker; Marker 1 set"));
    // Markers that other programs set are shown, too.
    tracker_->startRecord(folder_.filePath("selected.csv"));
    std::thread([&] { markers.add("from another thread"); }).join();
    const QString recordings =
        "Recording 00:00:00, 0 samples, 1 marker; Recording (fake) 00:00:00, 0 samples, 2 markers";
    QTRY_COMPARE(recordingText(), recordings + "; Marker 1 set");
    QTRY_COMPARE(recordingText(), recordings);
    tracker_->discardRecord();
    other_->discardRecord();
}

void TestStatusBar::shows_a_recovered_file_until_the_next_recording() {
    bar_->showRecovered(folder_.filePath("x_recovered.csv"));
    QCOMPARE(recordingText(), QString("Interrupted recording recovered: x_recovered.csv"));
    QVERIFY(button("openFolder"));
    tracker_->startRecord(folder_.filePath("x.csv"));
    tracker_->discardRecord();
    QCOMPARE(recordingText(), QString("Not saved: discarded"));
}

void TestStatusBar::shows_a_recording_of_a_tracker_that_is_not_selected() {
    other_->startRecord(folder_.filePath("other.csv"));
    QCOMPARE(recordingText(), QString("Recording (fake) 00:00:00, 0 samples"));
    tracker_->startRecord(folder_.filePath("selected.csv"));
    tracker_->addSample({});
    tracker_->discardRecord();
    QCOMPARE(recordingText(), QString("Recording (fake) 00:00:00, 0 samples; Not saved: discarded"));
    other_->stopRecord();
    QCOMPARE(recordingText(), QString("Saved other.csv, 0 samples, 00:00"));
    other_->startRecord(folder_.filePath("again.csv"));
    QCOMPARE(recordingText(), QString("Recording (fake) 00:00:00, 0 samples"));
    other_->discardRecord();
}

void TestStatusBar::tells_why_a_recording_is_not_saved_until_it_is_saved() {
    // A home without the fallback folder for record files. On Windows, the home stays that of the logged-in user.
    const QByteArray home = qgetenv("HOME");
    qputenv("HOME", folder_.path().toLocal8Bit());
    const auto restoreHome = qScopeGuard([&] { qputenv("HOME", home); });
    const QString records = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation) + "/Ocela";
    if (QFileInfo::exists(records))
        QSKIP("the files of the logged-in user must not be changed");
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^Cannot save .*missing.*: .+"));
    tracker_->startRecord(folder_.filePath("missing/r.csv"));
    tracker_->addSample({});
    tracker_->stopRecord();
    const QRegularExpression problem("^Not saved: .*missing.*: .+");
    QVERIFY2(problem.match(recordingText()).hasMatch(), qPrintable(recordingText()));
    other_->startRecord(folder_.filePath("other.csv"));
    other_->stopRecord();
    QVERIFY2(recordingText().startsWith("Saved other.csv, 0 samples, 00:00; Not saved: "), qPrintable(recordingText()));
    QVERIFY(button("retry"));
    QSignalSpy saveAs(bar_.get(), &StatusBar::saveAsWanted);
    button("saveAs")->click();
    QCOMPARE(saveAs.size(), 1);
    QVERIFY(tracker_->saveUnsavedAs(tracker_->unsavedPath(), folder_.filePath("chosen.csv")));
    QCOMPARE(recordingText(), QString("Saved chosen.csv, 1 sample, 00:00"));
    QVERIFY(!button("retry"));
}

void TestStatusBar::opens_files_of_the_records_folder_in_the_viewer_data() {
    dataColumns<QString, QByteArray>("path", "address");
    const QByteArray viewer = "http://localhost:3735/record.html?recording=";
    QTest::newRow("in the folder") << QString::fromUtf8("a & b+\u00fc.csv") << viewer + "a%20%26%20b%2B%C3%BC.csv";
    QTest::newRow("another spelling") << "../viewed/x.CSV" << viewer + "x.CSV";
    QTest::newRow("another folder") << "../x.csv" << QByteArray();
    QTest::newRow("another type") << "x.txt" << QByteArray();
}

void TestStatusBar::opens_files_of_the_records_folder_in_the_viewer() {
    QFETCH(QString, path);
    QFETCH(QByteArray, address);
    const QDir records(folder_.filePath("viewed"));
    QVERIFY(records.mkpath("."));
    tracker_->setRecordsFolder(records.path());
    tracker_->startRecord(records.filePath(path));
    tracker_->stopRecord();
    QCOMPARE(button("openViewer") != nullptr, !address.isEmpty());
    bar_->setDashboardAvailable(false);
    QVERIFY(!button("openViewer"));
    bar_->setDashboardAvailable(true);
    if (!address.isEmpty())
        QCOMPARE(opened("http", "openViewer").toEncoded(), address);
}

void TestStatusBar::long_texts_do_not_widen_the_bar() {
    constexpr int width = 240;
    tracker_->startRecord(folder_.filePath(QString(100, 'n') + ".csv"));
    tracker_->stopRecord();
    bar_->setReach(AccessButton::Reach::OtherComputers);
    tracker_->setConnected(true);
    Q_EMIT tracker_->calibrationFinished(FakeTracker::CalibrationResult::Unknown);
    const QToolButton &validate = *button("validate");
    bar_->resize(width, 100);
    bar_->show();
    QVERIFY(bar_->minimumSizeHint().width() < width);
    QTRY_COMPARE(validate.visibleRegion(), QRegion(QRect(QPoint(), validate.sizeHint())));
    const auto isBelow = [&] {
        const auto bottom = label("trackerStatus").mapTo(bar_.get(), label("trackerStatus").rect().bottomLeft());
        return label("recordingStatus").mapTo(bar_.get(), QPoint()).y() > bottom.y();
    };
    QTRY_VERIFY(isBelow());
    bar_->resize(5000, 100);
    QTRY_VERIFY(!isBelow());
}

void TestStatusBar::shows_who_can_reach_the_program() {
    using Reach = AccessButton::Reach;
    QVERIFY(!button("access"));
    bar_->setReach(Reach::ThisComputer);
    QVERIFY(button("access"));
    bar_->setReach(Reach::Nobody);
    QVERIFY(!button("access"));
}

void TestStatusBar::shows_a_problem_in_a_line_of_its_own() {
    bar_->setProblem("port taken");
    QCOMPARE(label("problem").text(), QString("port taken"));
    QVERIFY(label("problem").isVisibleTo(bar_.get()));
    bar_->setProblem(QString());
    QVERIFY(!label("problem").isVisibleTo(bar_.get()));
}

OCELA_TEST(TestStatusBar)
#include "tst_status_bar.moc"
