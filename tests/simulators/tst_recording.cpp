#include "subject/recording.h"
#include "subject/subject.h"
#include "support/test_main.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace sim;

class TestRecording : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void is_read_by_column_names();
    void refuses_what_is_no_recording();
    void is_acted_out();

private:
    std::optional<Recording> load(const QByteArray &text) {
        QFile file(folder_.filePath("recording.csv"));
        if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
            qFatal("cannot write the test's own file");
        file.close();
        return Recording::load(file.fileName(), &error_);
    }

    QTemporaryDir folder_;
    QString error_;
};

void TestRecording::is_read_by_column_names() {
    const auto recording = load(
        "\xEF\xBB\xBF\"Time\",Y,X,Valid,Note,R_X,R_Y,L_Pupil_mm,Distance_cm\r\n"
        "1000,20,10,1,\"a, b\",11,21,3.5,61.5\r\n\r\n1020,40.5,-5,0,c,12,22,3.6,0\r\n");
    QVERIFY2(recording, qPrintable(error_));
    const EyeState &first = recording->at(0.019);
    QCOMPARE(first.left.gaze.x, 0.10);  // no left eye of its own: the combined point
    QCOMPARE(first.right.gaze.y, 0.21);
    QCOMPARE(first.distance_cm, 61.5);
    QVERIFY(!recording->at(0.021).left.visible);
}

void TestRecording::refuses_what_is_no_recording() {
    QVERIFY(!load(""));
    QVERIFY2(error_.contains("recording.csv") && error_.contains("\"Time\" is missing"), qPrintable(error_));
    QVERIFY(!load("Time,Valid,X,Y\n1,1,1,1\n2,1,nan,1\n"));
    QVERIFY2(error_.contains("line 3: the column \"X\""), qPrintable(error_));
    QVERIFY(!load("Time,Valid,X,Y\n2,1,1,1\n1,1,1,1\n"));
}

void TestRecording::is_acted_out() {
    const auto recording = load("Time,Valid,X,Y\n0,1,10,10\n100,1,20,20\n200,1,30,30\n");
    Subject again, once;
    again.play(*recording, false);
    once.play(*recording, true);
    QCOMPARE(again.at(0.35).right.gaze.x, 0.1);
    QVERIFY(!once.at(0.31).left.visible);
}

OCELA_TEST(TestRecording)
#include "tst_recording.moc"
