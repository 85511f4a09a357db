#include "app/tracker_view_widget.h"
#include "support/fake_tracker.h"
#include "support/test_main.h"
#include "toolkit/global_keyboard.h"

#include <QCheckBox>
#include <QComboBox>
#include <QCursor>
#include <QGuiApplication>
#include <QPushButton>
#include <QRegularExpression>
#include <QScreen>
#include <QSignalSpy>
#include <QTest>

class TestTrackerViewWidget : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { panel_ = std::make_unique<TrackerViewWidget>(); }

    void buttons_do_nothing_without_a_tracker();
    void calibrates_the_chosen_screen();
    void screens_are_listed_by_number_and_size();
    void record_buttons_follow_the_tracker_not_the_click();
    void record_buttons_follow_the_new_tracker_alone();
    void record_that_starts_moves_nothing();
    void valid_gaze_moves_the_cursor_while_it_is_told_to();
    void f10_toggles_and_the_box_follows_silently();

private:
    [[nodiscard]] QPushButton *button(const char *text) const;
    [[nodiscard]] bool isShown(const char *text) const { return button(text)->isVisibleTo(panel_.get()); }

    std::unique_ptr<TrackerViewWidget> panel_;
};

namespace {

EyeTrackingSample gazeAt(int x, int y, bool valid = true) {
    EyeTrackingSample sample;
    sample.valid = valid;
    sample.x_px = x;
    sample.y_px = y;
    return sample;
}

}  // namespace

QPushButton *TestTrackerViewWidget::button(const char *text) const {
    for (QPushButton *candidate : panel_->findChildren<QPushButton *>()) {
        if (candidate->text() == text)
            return candidate;
    }
    qFatal("no button %s", text);
}

void TestTrackerViewWidget::buttons_do_nothing_without_a_tracker() {
    for (QPushButton *candidate : panel_->findChildren<QPushButton *>())
        candidate->click();
    QVERIFY(isShown("Start record"));
}

void TestTrackerViewWidget::calibrates_the_chosen_screen() {
    FakeTracker tracker;
    panel_->setEyetracker(&tracker);
    button("Calibrate")->click();
    QCOMPARE(tracker.calls, QStringList("calibrate"));
    QCOMPARE(tracker.lastArea, QGuiApplication::screens().first()->geometry());
}

void TestTrackerViewWidget::screens_are_listed_by_number_and_size() {
    const auto *combo = panel_->findChild<QComboBox *>();
    const QSize size = QGuiApplication::screens().first()->geometry().size();
    QCOMPARE(combo->count(), QGuiApplication::screens().size());
    QCOMPARE(combo->currentIndex(), 0);
    QCOMPARE(combo->itemText(0), QString("Screen #1 (%1x%2)").arg(size.width()).arg(size.height()));
    QVERIFY(!combo->itemIcon(0).isNull());
}

void TestTrackerViewWidget::record_buttons_follow_the_tracker_not_the_click() {
    FakeTracker tracker;
    panel_->setEyetracker(&tracker);
    QSignalSpy stopped(&tracker, &EyetrackerInterface::recordStopped);
    button("Start record")->click();
    QVERIFY(!isShown("Start record"));
    QVERIFY(isShown("Stop record"));

    // The documents folder of this test has no folder for records.
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^Cannot save "));
    button("Stop record")->click();
    QCOMPARE(stopped.count(), 1);
    QVERIFY(stopped[0][0].toString().endsWith("_ocela.csv"));
    QVERIFY(isShown("Start record"));
    QVERIFY(!isShown("Stop record"));
}

void TestTrackerViewWidget::record_buttons_follow_the_new_tracker_alone() {
    FakeTracker first, second;
    panel_->setEyetracker(&first);
    panel_->setEyetracker(&second);
    Q_EMIT first.recordStarted();
    QVERIFY(isShown("Start record"));
    Q_EMIT second.recordStarted();
    QVERIFY(isShown("Stop record"));

    first.startRecord("unused");
    panel_->setEyetracker(&first);
    QVERIFY(isShown("Stop record"));
    panel_->setEyetracker(&second);
    QVERIFY2(isShown("Start record"), "the record of another tracker is none of this one's");
}

void TestTrackerViewWidget::record_that_starts_moves_nothing() {
    FakeTracker tracker;
    panel_->setEyetracker(&tracker);
    panel_->show();
    QCoreApplication::processEvents();
    const QRect start = button("Start record")->geometry();
    const QSize size = panel_->sizeHint();

    tracker.startRecord();
    QCoreApplication::processEvents();
    QCOMPARE(button("Stop record")->geometry(), start);
    QCOMPARE(panel_->sizeHint(), size);
}

void TestTrackerViewWidget::valid_gaze_moves_the_cursor_while_it_is_told_to() {
    FakeTracker tracker;
    panel_->setEyetracker(&tracker);
    QCursor::setPos(5, 5);
    tracker.addSample(gazeAt(100, 200));
    QCOMPARE(QCursor::pos(), QPoint(5, 5));

    panel_->findChild<QCheckBox *>()->click();
    tracker.addSample(gazeAt(100, 200));
    QCOMPARE(QCursor::pos(), QPoint(100, 200));
    tracker.addSample(gazeAt(50, 60, false));
    QCOMPARE(QCursor::pos(), QPoint(100, 200));

    panel_->setEyetracker(nullptr);
    tracker.addSample(gazeAt(50, 60));
    QCOMPARE(QCursor::pos(), QPoint(100, 200));
}

void TestTrackerViewWidget::f10_toggles_and_the_box_follows_silently() {
    auto *box = panel_->findChild<QCheckBox *>();
    QSignalSpy toggled(box, &QCheckBox::toggled);
    const auto press = [](Qt::Key key) { Q_EMIT GlobalKeyboard::Instance()->keyPressed(key); };
    press(Qt::Key_F9);
    QVERIFY(!box->isChecked());
    press(Qt::Key_F10);
    QVERIFY(box->isChecked());
    press(Qt::Key_F10);
    QVERIFY(!box->isChecked());
    QCOMPARE(toggled.count(), 0);
}

OCELA_TEST(TestTrackerViewWidget)
#include "tst_tracker_view_widget.moc"
