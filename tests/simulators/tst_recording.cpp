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
    void uncrosses_the_right_eye();
    void refuses_what_is_no_recording_data();
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
    QCOMPARE(recording->duration(), 0.04);
    const EyeState &first = recording->at(0.019);
    QCOMPARE(first.left.gaze.x, 0.10);  // no left eye of its own: the combined point
    QCOMPARE(first.right.gaze.y, 0.21);
    QCOMPARE(first.left.pupil_mm, 3.5);
    QCOMPARE(first.distance_cm, 61.5);
    QVERIFY(first.left.visible);
    QVERIFY(!recording->at(0.021).left.visible);
    QCOMPARE(recording->at(0.021).left.gaze.x, -0.05);
}

void TestRecording::uncrosses_the_right_eye() {
    const auto recording = load("Time,Valid,X,Y,L_X,L_Y,R_X,R_Y\n0,1,10,80,11,80,79,9\n16,1,70,30,70,31,30,70\n");
    QVERIFY2(recording, qPrintable(error_));
    QCOMPARE(recording->at(0).right.gaze.x, 0.09);
    QCOMPARE(recording->at(0).right.gaze.y, 0.79);
    QCOMPARE(recording->at(0.02).right.gaze.x, 0.70);
}

void TestRecording::refuses_what_is_no_recording_data() {
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("reason");
    QTest::newRow("empty file") << QByteArray() << "the column \"Time\" is missing";
    QTest::newRow("header only") << QByteArray("Time,Valid,X,Y\n") << "holds no rows";
    QTest::newRow("text for a number") << QByteArray("Time,Valid,X,Y\n1,1,1,1\n2,1,abc,1\n")
                                       << "line 3: the column \"X\"";
    QTest::newRow("not a number") << QByteArray("Time,Valid,X,Y\n1,1,nan,1\n") << "line 2";
    QTest::newRow("row cut short") << QByteArray("Time,Valid,X,Y\n1,1\n") << "line 2";
    QTest::newRow("time runs backwards") << QByteArray("Time,Valid,X,Y\n2,1,1,1\n1,1,1,1\n") << "run backwards";
}

void TestRecording::refuses_what_is_no_recording() {
    QFETCH(QByteArray, text);
    QFETCH(QString, reason);
    QVERIFY(!load(text));
    QVERIFY2(error_.contains(reason) && error_.contains("recording.csv"), qPrintable(error_));
}

void TestRecording::is_acted_out() {
    const auto recording = load("Time,Valid,X,Y\n0,1,10,10\n100,1,20,20\n200,1,30,30\n");
    QVERIFY2(recording, qPrintable(error_));
    Subject again, once;
    again.at(5);
    again.play(*recording, false);
    once.play(*recording, true);
    QCOMPARE(again.at(5.15).left.gaze.x, 0.2);
    QCOMPARE(again.at(5.35).right.gaze.x, 0.1);
    QVERIFY(again.at(5.35).left.pupil_mm > 2);  // not in the file
    QVERIFY(once.at(0.29).left.visible);
    QVERIFY(!once.at(0.31).left.visible);
}

OCELA_TEST(TestRecording)
#include "tst_recording.moc"
