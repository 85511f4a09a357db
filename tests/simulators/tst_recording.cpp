#include "subject/recording.h"
#include "subject/subject.h"
#include "support/test_main.h"

#include <QFile>
#include <QTemporaryDir>

using namespace sim;

class TestRecording : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void is_read_by_column_names();
    void invalid_files_are_refused();
    void is_played_repeatedly_or_once();
    void corrects_a_crossed_right_eye();

private:
    std::variant<Recording, QString> load(const QByteArray &text) {
        QFile file(folder_.filePath("recording.csv"));
        if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
            qFatal("cannot write the file of the test");
        file.close();
        return Recording::load(file.fileName());
    }

    QTemporaryDir folder_;
};

void TestRecording::is_read_by_column_names() {
    const auto recording = std::get<Recording>(
        load("\xEF\xBB\xBF\"Time\",Y,X,Valid,Note,R_X,R_Y,L_Pupil_mm,R_Pupil_mm,Distance_cm\r\n"
             "1000,20,10,1,\"a, b\",11,21,3.5,3.75,61.5\r\n\r\n1020,40.5,-5,0,c,12,22,3.6,3.8,0\r\n"));
    const EyeState &first = recording.at(0.019);
    QCOMPARE(first.left.gaze.x, 0.10);  // the combined gaze, because the left eye has none
    QCOMPARE(first.right.gaze.y, 0.21);
    QCOMPARE(first.left.pupil_mm, 3.5);
    QCOMPARE(first.right.pupil_mm, 3.75);
    QCOMPARE(first.distance_cm, 61.5);
    QVERIFY(!recording.at(0.021).left.visible);
}

void TestRecording::invalid_files_are_refused() {
    for (const char *text : {"", "Time,Valid,X,Y\n", "Time,Valid,X,Y\n1,1,1,1\n2,1,nan,1\n", "Time,Valid,X,Y\n1,1,1\n",
                             "Time,Valid,X,Y\n2,1,1,1\n1,1,1,1\n"})
        QVERIFY2(std::holds_alternative<QString>(load(text)), text);
}

void TestRecording::is_played_repeatedly_or_once() {
    const auto recording = std::get<Recording>(
        load("Time,Valid,X,Y,L_Pupil_mm,Distance_cm\n0,1,10,10,5.5,45\n100,1,20,20,5.5,45\n200,1,30,30,5.5,45\n"));
    Subject repeated;
    Subject once;
    repeated.play(recording, false);
    once.play(recording, true);
    QCOMPARE(repeated.at(0.35).right.gaze.x, 0.1);
    QCOMPARE(repeated.at(0.35).left.pupil_mm, 5.5);
    QCOMPARE(repeated.at(0.35).distance_cm, 45.0);
    QVERIFY(once.at(0.29).left.visible);
    QVERIFY(!once.at(0.31).left.visible);
}

/// A row without a right eye gets the combined gaze, whose axes must not be exchanged.
void TestRecording::corrects_a_crossed_right_eye() {
    const QByteArray crossed = QByteArray("0,1,70,20,20,70\n").repeated(30);
    const auto recording = std::get<Recording>(load("Time,Valid,X,Y,R_X,R_Y\n" + crossed + "10,1,60,30,0,0\n"));
    QCOMPARE(recording.at(0).right.gaze.x, 0.7);
    QCOMPARE(recording.at(0.01).right.gaze.x, 0.6);
}

OCELA_TEST(TestRecording)
#include "tst_recording.moc"
