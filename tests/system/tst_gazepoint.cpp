#include "support/test_main.h"
#include "system/desktop.h"
#include "system/program.h"
#include "system/server.h"
#include "system/timeout.h"

#include <QCursor>

namespace {

QByteArray gazeAt(double x, double y, bool valid = true) {
    return QString("<REC FPOGX=\"%1\" FPOGY=\"%2\" FPOGV=\"%3\" />").arg(x).arg(y).arg(valid ? 1 : 0).toLatin1();
}

}  // namespace

/// The control of the mouse cursor by gaze.
class TestGazePointSession : public ProgramTest {
    Q_OBJECT

private Q_SLOTS:
    void gaze_moves_the_cursor_between_two_presses_of_F10();

private:
    /// Sends a gaze at another place and returns whether the cursor is there as soon as the window shows the gaze.
    [[nodiscard]] bool cursorFollows(bool valid = true);

    ScriptedServer server_;
    int gazeCount_ = 0;
};

bool TestGazePointSession::cursorFollows(bool valid) {
    constexpr int placeCount = 16;  // a power of two, so that the fractions are exact
    const double place = static_cast<double>(++gazeCount_ % placeCount) / placeCount;
    const QPoint start(5, 5);
    const QPoint expected(static_cast<int>(1920 * place), 540);
    QCursor::setPos(start);
    // The reply of the X server shows that this move is complete before the program moves the cursor.
    if (QCursor::pos() != start)
        return false;
    server_.send(gazeAt(place, 0.5, valid));
    const bool shown = !desktop::waitFor(QString::asprintf("x:%6.1f%%", 100 * place)).isEmpty();
    return shown && QCursor::pos() == expected;
}

void TestGazePointSession::gaze_moves_the_cursor_between_two_presses_of_F10() {
    QVERIFY(server_.listen());
    QVERIFY(program_->startWindow());
    QVERIFY(server_.connectProgram(gazeAt(0.9, 0.9)));
    QVERIFY(!cursorFollows());
    desktop::press("F10");
    // The key and the gaze arrive on different connections, so their order is not defined.
    QVERIFY(QTest::qWaitFor([this] { return cursorFollows(); }, timeoutMs));
    QVERIFY(!cursorFollows(false));
    desktop::save(desktop::screenshot(), "gaze-controls-cursor");
    desktop::press("F10");
    QVERIFY(QTest::qWaitFor([this] { return !cursorFollows(); }, timeoutMs));
    checkEnd();
}

OCELA_TEST(TestGazePointSession)
#include "tst_gazepoint.moc"
