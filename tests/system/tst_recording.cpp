#include "support/test_main.h"
#include "system/desktop.h"
#include "system/expected_row.h"
#include "system/patience.h"
#include "system/program.h"
#include "system/record_file.h"
#include "system/server.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QTest>
#include <algorithm>

namespace {

constexpr char linesFile[] = OCELA_TEST_DATA "/gazepoint_lines.txt";
constexpr QSize screenSize(1920, 1080);
constexpr char header[] =
    "Timestamp,Time,Valid,X,Y,X_px,Y_px,Distance_cm,L_X,L_Y,L_X_px,L_Y_px,L_Pupil_mm,L_PupilX_px,L_PupilY_px,"
    "R_X,R_Y,R_X_px,R_Y_px,R_Pupil_mm,R_PupilX_px,R_PupilY_px,Focus";

QList<QByteArray> recordedLines() {
    QFile file(linesFile);
    QList<QByteArray> lines;
    if (!file.open(QIODevice::ReadOnly))
        return lines;
    while (!file.atEnd()) {
        const QByteArray line = file.readLine().trimmed();
        if (line.startsWith("<REC"))
            lines << line;
    }
    return lines;
}

/// Whether the picture shows one of the lines that hold a gaze, with all its values.
bool showsOneOf(const QList<QByteArray> &lines, const QImage &screen) {
    return std::any_of(lines.begin(), lines.end(), [&](const QByteArray &line) {
        return line.contains("FPOGX") && line.contains("LPOGX") &&
               desktop::showsAll(expected::windowTexts(line, screenSize), screen);
    });
}

/// How many lines, from `line` on in the circle, the row is made of. More than one that arrive together count as
/// one record, which a busy machine brings about now and then. 0 when the row is something else.
int linesInRow(const QStringList &row, const QList<QByteArray> &lines, int line) {
    constexpr int most = 4;
    QByteArray chunk;
    for (int count = 1; count <= most; ++count) {
        chunk += lines[(line + count - 1) % lines.size()] + "\r\n";
        if (row == expected::cells(chunk, screenSize))
            return count;
    }
    return 0;
}

/// Whether the rows are the lines played round and round, beginning anywhere, and nearly each line has its own.
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

/// The two times of every row: by the clock, between `from` and `to`, and counted from the first row.
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

/// From the server's lines to the window and to the record file.
class TestRecording : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void records_what_a_real_server_sent();
    void survives_the_loss_of_its_folders();

private:
    /// Records by the buttons for as long as `lasts` tells.
    template <typename Condition>
    [[nodiscard]] bool record(Condition lasts);

    std::unique_ptr<Home> home_;
    std::unique_ptr<Program> program_;
    qint64 startedMs_ = 0;
    qint64 stoppedMs_ = 0;
};

void TestRecording::init() {
    home_ = std::make_unique<Home>();
    program_ = std::make_unique<Program>(*home_);
}

void TestRecording::cleanup() {
    program_.reset();
}

template <typename Condition>
bool TestRecording::record(Condition lasts) {
    startedMs_ = QDateTime::currentMSecsSinceEpoch();
    const bool done = desktop::click("Start record") && desktop::waitFor("Stop record") &&
                      !desktop::shows("Start record") && QTest::qWaitFor([&] { return !lasts(); }, patienceMs) &&
                      desktop::click("Stop record") && desktop::waitFor("Start record");
    stoppedMs_ = QDateTime::currentMSecsSinceEpoch();
    return done;
}

void TestRecording::records_what_a_real_server_sent() {
    const QList<QByteArray> lines = recordedLines();
    QVERIFY(lines.size() > 20);
    // Slow enough for each record to reach the program by itself, as two at a time would count as one.
    Simulator simulator;
    QVERIFY(simulator.listen({"--lines", linesFile, "--rate", "20", "--seed", "1"}));
    Tap tap;
    QVERIFY(tap.open());

    QVERIFY(program_->startWindow());
    QVERIFY(desktop::waitFor("Start record"));
    QImage screen;
    const auto seen = [&] { return showsOneOf(lines, screen = program_->picture()); };
    QVERIFY(QTest::qWaitFor(seen, patienceMs));
    desktop::keep(screen, "recorded-lines");

    const int before = tap.records().size();
    QVERIFY(record([&] { return tap.records().size() < before + 2 * lines.size(); }));
    const RecordFile file(home_->recordFile());
    QCOMPARE(file.header, QByteArray(header));
    QVERIFY(file.rows.size() > lines.size());
    QVERIFY(isCycleOf(file, lines));
    checkTimes(file, startedMs_, stoppedMs_);

    // The end of the server is shown, and the program lives on.
    simulator.kill();
    QTRY_VERIFY_WITH_TIMEOUT(desktop::showsIndicator(0xffcc3300), patienceMs);
    QCOMPARE(program_->close(), 0);
    QCOMPARE(program_->complaints(), QStringList());
}

void TestRecording::survives_the_loss_of_its_folders() {
    Simulator simulator;
    QVERIFY(simulator.listen({}));
    QVERIFY(program_->startWindow());
    QTRY_VERIFY_WITH_TIMEOUT(desktop::showsIndicator(0xff33cc00), patienceMs);

    QVERIFY(record([&] {
        QDir(home_->recordsFolder()).removeRecursively();
        QDir(home_->dataFolder()).removeRecursively();
        return false;
    }));
    QVERIFY(program_->process().waitForLog("Cannot save"));
    QCOMPARE(program_->complaints().size(), 1);
    QVERIFY2(program_->complaints().first().startsWith("[warning] ocela.csv: Cannot save " + home_->recordsFolder()),
             qPrintable(program_->complaints().first()));
    QVERIFY(desktop::showsIndicator(0xff33cc00));
    QCOMPARE(program_->close(), 0);
}

OCELA_TEST(TestRecording)
#include "tst_recording.moc"
