#include "support/loopback_client.h"
#include "support/test_main.h"
#include "system/desktop.h"
#include "system/expected_row.h"
#include "system/http_client.h"
#include "system/program.h"
#include "system/record_file.h"
#include "system/server.h"
#include "system/timeout.h"

#include <QDateTime>
#include <QJsonArray>
#include <algorithm>

namespace {

constexpr QSize screenSize(1920, 1080);
constexpr char header[] =
    "Timestamp,Time,Valid,X,Y,X_px,Y_px,Distance_cm,L_X,L_Y,L_X_px,L_Y_px,L_Pupil_mm,L_PupilX_px,L_PupilY_px,"
    "R_X,R_Y,R_X_px,R_Y_px,R_Pupil_mm,R_PupilX_px,R_PupilY_px,Focus";

/// Checks the two times of every row, in milliseconds: the time since 1970, which must be between `from` and `to`, and
/// the time since the first row.
void checkTimes(const RecordFile &file, qint64 from, qint64 to) {
    qint64 last = from;
    for (int row = 0; row < file.rows.size(); ++row) {
        const qint64 timestamp = file.timestamp(row);
        QVERIFY2(timestamp >= last && timestamp <= to, qPrintable(file.rows[row].join(',')));
        QCOMPARE(file.rows[row][1], QString::number(timestamp - file.timestamp(0)));
        last = timestamp;
    }
}

}  // namespace

/// The path of the samples from the GazePoint server to the window and the record file.
class TestRecording : public ProgramTest {
    Q_OBJECT

private Q_SLOTS:
    void shows_and_records_captured_lines();

private:
    [[nodiscard]] int newestNumber() { return client_.ask("/api/v1/state")["tracker"].toObject()["newest"].toInt(); }
    /// Sends a line and waits for its sample, so that each line arrives in a chunk of its own.
    [[nodiscard]] bool deliver(const QByteArray &line);
    [[nodiscard]] bool deliver(const QList<QByteArray> &lines);
    /// Sets a marker with the keyboard, and waits for it.
    [[nodiscard]] bool mark();

    ScriptedServer server_;
    HttpClient client_;
};

bool TestRecording::deliver(const QByteArray &line) {
    const int newest = newestNumber();
    server_.send(line);
    return QTest::qWaitFor([&] { return newestNumber() > newest; }, timeoutMs);
}

bool TestRecording::deliver(const QList<QByteArray> &lines) {
    return std::all_of(lines.begin(), lines.end(), [this](const QByteArray &line) { return deliver(line); });
}

bool TestRecording::mark() {
    desktop::press("F9", program_->window("^Ocela$"));
    const auto isMarked = [this] {
        const QJsonArray recordings = client_.ask("/api/v1/state")["recordings"].toArray();
        return recordings.first().toObject()["events"].toInt() == 1;
    };
    return QTest::qWaitFor(isMarked, timeoutMs);
}

void TestRecording::shows_and_records_captured_lines() {
    const QList<QByteArray> lines = capturedLines("<REC");
    QVERIFY(lines.size() > 20);
    QVERIFY(server_.listen());
    QVERIFY(program_->startWindow());

    const auto shownLine = std::find_if(lines.begin(), lines.end(), [](const QByteArray &line) {
        return line.contains("FPOGX") && line.contains("LPOGX");
    });
    QVERIFY(shownLine != lines.end());
    QVERIFY(server_.connectProgram(*shownLine));
    QVERIFY(deliver(*shownLine));
    const QStringList texts = expected::windowTexts(*shownLine, screenSize);
    QTRY_VERIFY_WITH_TIMEOUT(desktop::showsAll(texts, program_->picture()), timeoutMs);
    desktop::save(program_->picture(), "recorded-lines");

    const qint64 startedMs = QDateTime::currentMSecsSinceEpoch();
    QVERIFY(desktop::click("Start record") && !desktop::waitFor("Stop record").isEmpty());
    QVERIFY(!desktop::shows("Start record"));
    const int markedRow = lines.size() / 2;
    QVERIFY(deliver(lines.mid(0, markedRow + 1)));
    QVERIFY(mark());
    QVERIFY(deliver(lines.mid(markedRow + 1)));
    QVERIFY(desktop::click("Stop record") && !desktop::waitFor("Start record").isEmpty());
    const qint64 stoppedMs = QDateTime::currentMSecsSinceEpoch();

    const RecordFile file(home_->recordFile());
    QCOMPARE(file.header, QByteArray(header));
    QCOMPARE(file.rows.size(), lines.size());
    for (int row = 0; row < lines.size(); ++row)
        QCOMPARE(file.values(row), expected::cells(lines[row], screenSize));
    checkTimes(file, startedMs, stoppedMs);
    const RecordFile events(home_->recordFile().replace(".csv", "_events.csv"));
    QCOMPARE(events.header, QByteArray("onset,duration,text,number,row"));
    QCOMPARE(events.rows.size(), 1);
    QCOMPARE(events.rows.first().mid(1, 2), QStringList({"0", "F9"}));
    QCOMPARE(events.rows.first().value(4), QString::number(markedRow));
    const double onsetMs = 1000 * events.rows.first().first().toDouble();
    // The column "Time" and the onset come from different clocks, which are not read at the same moment.
    constexpr double toleranceMs = 100;
    QVERIFY(onsetMs > file.rows[markedRow].value(1).toDouble() - toleranceMs);
    QVERIFY(onsetMs < file.rows[markedRow + 1].value(1).toDouble() + toleranceMs);

    // The program shows the loss of the server and continues.
    server_.disconnectProgram();
    QTRY_VERIFY_WITH_TIMEOUT(desktop::showsIndicator(desktop::disconnectedColour), timeoutMs);
    checkEnd();
}

OCELA_TEST(TestRecording)
#include "tst_recording.moc"
