#include "support/loopback_client.h"
#include "support/test_main.h"
#include "system/desktop.h"
#include "system/expected_row.h"
#include "system/program.h"
#include "system/record_file.h"
#include "system/server.h"
#include "system/timeout.h"

#include <QDateTime>
#include <algorithm>

namespace {

constexpr char linesFile[] = OCELA_TEST_DATA "/gazepoint_lines.txt";
constexpr QSize screenSize(1920, 1080);
constexpr char header[] =
    "Timestamp,Time,Valid,X,Y,X_px,Y_px,Distance_cm,L_X,L_Y,L_X_px,L_Y_px,L_Pupil_mm,L_PupilX_px,L_PupilY_px,"
    "R_X,R_Y,R_X_px,R_Y_px,R_Pupil_mm,R_PupilX_px,R_PupilY_px,Focus";

/// Returns whether the picture shows all values of one of the lines that have a gaze.
bool showsOneOf(const QList<QByteArray> &lines, const QImage &screen) {
    return std::any_of(lines.begin(), lines.end(), [&](const QByteArray &line) {
        return line.contains("FPOGX") && line.contains("LPOGX") &&
               desktop::showsAll(expected::windowTexts(line, screenSize), screen);
    });
}

/// Returns the number of lines, from `line` on, that make up the row, or 0 if the row has other values. On a busy
/// machine, several lines may arrive in one chunk and become one sample.
int linesInRow(const QStringList &row, const QList<QByteArray> &lines, int line) {
    constexpr int maxCount = 4;
    QByteArray chunk;
    for (int count = 1; count <= maxCount; ++count) {
        chunk += lines[(line + count - 1) % lines.size()] + "\r\n";
        if (row == expected::cells(chunk, screenSize))
            return count;
    }
    return 0;
}

/// Returns whether the rows repeat the lines in order, starting at any line, with at least 10 rows for 11 lines.
bool isCycleOf(const RecordFile &file, const QList<QByteArray> &lines) {
    for (int start = 0; start < lines.size(); ++start) {
        int line = start;
        int count = 1;
        for (int row = 0; row < file.rows.size() && count > 0; ++row) {
            count = linesInRow(file.values(row), lines, line);
            line += count;
        }
        if (count > 0 && line - start <= file.rows.size() * 11 / 10)
            return true;
    }
    return false;
}

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
    /// Starts a recording with the button, waits for `done` and stops it with the button.
    template <typename Condition>
    [[nodiscard]] bool record(Condition done);

    qint64 startedMs_ = 0;
    qint64 stoppedMs_ = 0;
};

template <typename Condition>
bool TestRecording::record(Condition done) {
    startedMs_ = QDateTime::currentMSecsSinceEpoch();
    const bool recorded = desktop::click("Start record") && !desktop::waitFor("Stop record").isEmpty() &&
                          !desktop::shows("Start record") && QTest::qWaitFor(done, timeoutMs) &&
                          desktop::click("Stop record") && !desktop::waitFor("Start record").isEmpty();
    stoppedMs_ = QDateTime::currentMSecsSinceEpoch();
    return recorded;
}

void TestRecording::shows_and_records_captured_lines() {
    const QList<QByteArray> lines = capturedLines("<REC");
    QVERIFY(lines.size() > 20);
    // The rate is low, so that each line arrives in a chunk of its own.
    Simulator simulator;
    QVERIFY(simulator.listen({"--lines", linesFile, "--rate", "20", "--seed", "1"}));
    SecondClient client;
    QVERIFY(client.open());

    QVERIFY(program_->startWindow());
    QVERIFY(!desktop::waitFor("Start record").isEmpty());
    QImage screen;
    const auto shown = [&] { return showsOneOf(lines, screen = program_->picture()); };
    QVERIFY(QTest::qWaitFor(shown, timeoutMs));
    desktop::save(screen, "recorded-lines");

    const int before = client.records().size();
    bool isMarked = false;
    const auto done = [&] {
        const int count = client.records().size() - before;
        if (!isMarked && count >= lines.size()) {
            desktop::press("F9", program_->window("^Ocela$"));
            isMarked = true;
        }
        return count >= 2 * lines.size();
    };
    QVERIFY(record(done));
    const RecordFile file(home_->recordFile());
    QCOMPARE(file.header, QByteArray(header));
    QVERIFY(file.rows.size() > lines.size());
    QVERIFY(isCycleOf(file, lines));
    checkTimes(file, startedMs_, stoppedMs_);
    const RecordFile events(home_->recordFile().replace(".csv", "_events.csv"));
    QCOMPARE(events.header, QByteArray("onset,duration,text,number,row"));
    QCOMPARE(events.rows.size(), 1);
    QCOMPARE(events.rows.first().mid(1, 2), QStringList({"0", "F9"}));
    const double onsetMs = 1000 * events.rows.first().first().toDouble();
    const int row = events.rows.first().value(4).toInt();
    // The column "Time" and the onset come from different clocks, which are not read at the same moment.
    constexpr double toleranceMs = 100;
    QVERIFY(row > 0 && row + 1 < file.rows.size());
    QVERIFY(onsetMs > file.rows[row].value(1).toDouble() - toleranceMs);
    QVERIFY(onsetMs < file.rows[row + 1].value(1).toDouble() + toleranceMs);

    // The program shows the loss of the server and continues.
    simulator.kill();
    QTRY_VERIFY_WITH_TIMEOUT(desktop::showsIndicator(desktop::disconnectedColour), timeoutMs);
    checkEnd();
}

OCELA_TEST(TestRecording)
#include "tst_recording.moc"
