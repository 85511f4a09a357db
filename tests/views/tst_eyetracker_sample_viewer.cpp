#include "support/fake_tracker.h"
#include "support/test_main.h"
#include "views/eyetracker_sample_viewer.h"

#include <QGridLayout>
#include <QLabel>
#include <QRegularExpression>
#include <QTranslator>
#include <limits>
#include <thread>

class TestEyetrackerSampleViewer : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void shows_a_sample_data();
    void shows_a_sample();
    void samples_of_the_old_tracker_are_not_shown();
    void values_that_are_not_live_are_greyed();
    void keeps_its_layout_while_values_change();
    void shrinks_again_after_a_wide_value();
    void shows_another_language_immediately();
};

namespace {

/// Returns the texts of the value labels of one of the three columns, from top to bottom.
QStringList valuesOf(const EyetrackerSampleViewer &viewer, int column) {
    auto *main = qobject_cast<QGridLayout *>(viewer.layout());
    auto *grid = qobject_cast<QGridLayout *>(main->itemAtPosition(1, column)->layout());
    const int valueColumn = column == 0 ? 2 : 1;
    QStringList texts;
    for (int row = 1; row < grid->rowCount(); ++row)
        texts << qobject_cast<QLabel *>(grid->itemAtPosition(row, valueColumn)->widget())->text();
    return texts;
}

QString allValues(const EyetrackerSampleViewer &viewer) {
    return (valuesOf(viewer, 0) + valuesOf(viewer, 1) + valuesOf(viewer, 2)).join('|');
}

EyeTrackingSample sampleAt(float x, qint32 xPixel) {
    EyeTrackingSample sample;
    sample.x = x;
    sample.x_px = xPixel;
    return sample;
}

class UpperCase : public QTranslator {
public:
    [[nodiscard]] QString translate(const char *, const char *text, const char *, int) const override {
        return QString(text).toUpper();
    }
    [[nodiscard]] bool isEmpty() const override { return false; }
};

class LayoutCounter : public QObject {
public:
    int count = 0;
    bool eventFilter(QObject *, QEvent *event) override {
        count += event->type() == QEvent::LayoutRequest;
        return false;
    }
};

}  // namespace

void TestEyetrackerSampleViewer::shows_a_sample_data() {
    dataColumns<EyeTrackingSample, QString>("sample", "texts");
    dataRow("all fields", EyeTrackingSample{1, true, false, true, 1,  2,  3,  4,  5,  6,  7,  8,
                                            9, 10,   11,    12,   13, 14, 15, 16, 17, 18, 19, 20},
            "true|0-|x:   1.0%|y:   4.0%|x:    7px|y:    8px|19.0|20.0cm"
            "|0|2.0%|5.0%|   17.0mm|-|3.0%|6.0%|   18.0mm");
    dataRow("wide values are not truncated", sampleAt(-1234.56F, 123456),
            "false|--|x:-1234.6%|y:   0.0%|x:123456px|y:    0px|0.0|0.0cm"
            "|-|0.0%|0.0%|    0.0mm|-|0.0%|0.0%|    0.0mm");
}

void TestEyetrackerSampleViewer::shows_a_sample() {
    QFETCH(EyeTrackingSample, sample);
    QFETCH(QString, texts);
    FakeTracker tracker;
    EyetrackerSampleViewer viewer;
    viewer.setEyetracker(&tracker);
    std::thread([&] { tracker.addSample(sample); }).join();
    QTRY_COMPARE(allValues(viewer), texts);
    for (const QLabel *label : viewer.findChildren<QLabel *>())
        QVERIFY2(label->maximumWidth() >= label->sizeHint().width(), qPrintable(label->text()));
}

void TestEyetrackerSampleViewer::samples_of_the_old_tracker_are_not_shown() {
    FakeTracker first, second;
    EyetrackerSampleViewer viewer;
    viewer.setEyetracker(&first);
    first.addSample(sampleAt(10, 0));  // still queued
    viewer.setEyetracker(&second);
    QCoreApplication::processEvents();
    QCOMPARE(valuesOf(viewer, 0)[2], QString("x:   0.0%"));
    first.addSample(sampleAt(20, 0));
    second.addSample(sampleAt(30, 0));
    QTRY_COMPARE(valuesOf(viewer, 0)[2], QString("x:  30.0%"));

    viewer.setEyetracker(nullptr);
    QCOMPARE(valuesOf(viewer, 0)[2], QString("x:   0.0%"));
}

void TestEyetrackerSampleViewer::values_that_are_not_live_are_greyed() {
    FakeTracker tracker, other;
    EyetrackerSampleViewer viewer;
    const auto *notice = viewer.findChild<QLabel *>("notLive");
    const auto *value = qobject_cast<QLabel *>(
        qobject_cast<QGridLayout *>(qobject_cast<QGridLayout *>(viewer.layout())->itemAtPosition(1, 0)->layout())
            ->itemAtPosition(1, 2)
            ->widget());
    viewer.setEyetracker(&tracker);
    QCOMPARE(notice->text(), QString("No sample yet"));
    QVERIFY(!value->isEnabled());

    tracker.setConnected(true);
    // On a machine that stops for a moment, a sample can be old when the viewer shows it.
    const auto isLiveWithSample = [&](float x) {
        tracker.addSample(sampleAt(x, 0));
        return value->isEnabled();
    };
    QTRY_VERIFY(isLiveWithSample(10));
    QCOMPARE(notice->text(), QString());
    const QRegularExpression since("^Not live since [0-9]{2}:[0-9]{2}:[0-9]{2}$");
    QTRY_VERIFY(since.match(notice->text()).hasMatch());  // silent
    QVERIFY(!value->isEnabled());
    QTRY_VERIFY(isLiveWithSample(20));
    tracker.setConnected(false);
    QVERIFY(!value->isEnabled());

    viewer.setEyetracker(&other);
    QCOMPARE(notice->text(), QString("No sample yet"));
    QCOMPARE(valuesOf(viewer, 0)[2], QString("x:   0.0%"));
    viewer.setEyetracker(&tracker);
    QCOMPARE(valuesOf(viewer, 0)[2], QString("x:  20.0%"));
}

void TestEyetrackerSampleViewer::keeps_its_layout_while_values_change() {
    FakeTracker tracker;
    EyetrackerSampleViewer viewer;
    viewer.setEyetracker(&tracker);
    viewer.show();
    tracker.addSample(sampleAt(10, 1000));
    QTRY_COMPARE(valuesOf(viewer, 0)[4], QString("x: 1000px"));
    QCoreApplication::processEvents();

    LayoutCounter layouts;
    viewer.installEventFilter(&layouts);
    for (int i = 0; i < 10; ++i)
        tracker.addSample(sampleAt(static_cast<float>(i), i));
    QTRY_COMPARE(valuesOf(viewer, 0)[4], QString("x:    9px"));
    QCoreApplication::processEvents();
    QCOMPARE(layouts.count, 0);
}

void TestEyetrackerSampleViewer::shrinks_again_after_a_wide_value() {
    FakeTracker tracker;
    EyetrackerSampleViewer viewer;
    viewer.setEyetracker(&tracker);
    QList<int> widths;
    for (const qint32 xPixel : {1000, std::numeric_limits<qint32>::max(), 1000}) {
        tracker.addSample(sampleAt(10, xPixel));
        QCoreApplication::processEvents();
        for (const QLabel *label : viewer.findChildren<QLabel *>()) {
            if (label->text().endsWith("px") && label->text().startsWith("x:"))
                widths << label->maximumWidth();
        }
    }
    QVERIFY(widths[1] > widths[0]);
    QVERIFY(widths[2] < widths[1]);
}

void TestEyetrackerSampleViewer::shows_another_language_immediately() {
    FakeTracker tracker;
    EyetrackerSampleViewer viewer;
    viewer.setEyetracker(&tracker);
    tracker.addSample(sampleAt(10, 0));
    QTRY_COMPARE(valuesOf(viewer, 0)[2], QString("x:  10.0%"));

    UpperCase upperCase;
    QCoreApplication::installTranslator(&upperCase);
    QTRY_COMPARE(valuesOf(viewer, 0)[7], QString("0.0CM"));
    QStringList captions;
    for (const QLabel *label : viewer.findChildren<QLabel *>("eyeHeader"))
        captions << label->text();
    QCOMPARE(captions.join(' '), QString("VALID EYES POSITION FOCUS DISTANCE VALID X Y PUPIL VALID X Y PUPIL"));
    QCOMPARE(valuesOf(viewer, 0)[2], QString("x:  10.0%"));
}

OCELA_TEST(TestEyetrackerSampleViewer)
#include "tst_eyetracker_sample_viewer.moc"
