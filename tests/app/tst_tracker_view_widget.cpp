#include "app/tracker_view_widget.h"
#include "support/fake_tracker.h"
#include "support/test_main.h"

#include <QPushButton>
#include <memory>

class TestTrackerViewWidget : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { panel_ = std::make_unique<TrackerViewWidget>(); }

    void buttons_do_nothing_without_a_tracker();
    void record_buttons_show_the_state_of_the_last_tracker();
    void starting_a_recording_does_not_change_the_layout();

private:
    [[nodiscard]] QPushButton *button(const char *text) const;
    [[nodiscard]] bool isShown(const char *text) const { return button(text)->isVisibleTo(panel_.get()); }

    std::unique_ptr<TrackerViewWidget> panel_;
};

QPushButton *TestTrackerViewWidget::button(const char *text) const {
    for (QPushButton *candidate : panel_->findChildren<QPushButton *>()) {
        if (candidate->text() == text)
            return candidate;
    }
    qFatal("there is no button %s", text);
}

void TestTrackerViewWidget::buttons_do_nothing_without_a_tracker() {
    for (QPushButton *candidate : panel_->findChildren<QPushButton *>())
        candidate->click();
    QVERIFY(isShown("Start record"));
}

void TestTrackerViewWidget::record_buttons_show_the_state_of_the_last_tracker() {
    FakeTracker first, second;
    panel_->setEyetracker(&first);
    panel_->setEyetracker(&second);
    Q_EMIT first.recordStarted();
    QVERIFY(isShown("Start record"));
    Q_EMIT second.recordStarted();
    QVERIFY(!isShown("Start record"));
    QVERIFY(isShown("Stop record"));
    Q_EMIT second.recordStopped("t.csv");
    QVERIFY(isShown("Start record"));
    QVERIFY(!isShown("Stop record"));

    first.startRecord("unused");
    panel_->setEyetracker(&first);
    QVERIFY(isShown("Stop record"));
    panel_->setEyetracker(&second);
    QVERIFY2(isShown("Start record"), "another tracker is recording");
}

void TestTrackerViewWidget::starting_a_recording_does_not_change_the_layout() {
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

OCELA_TEST(TestTrackerViewWidget)
#include "tst_tracker_view_widget.moc"
