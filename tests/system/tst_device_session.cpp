#include "support/gazepoint_wire.h"
#include "support/test_main.h"
#include "system/desktop.h"
#include "system/patience.h"
#include "system/program.h"
#include "system/server.h"

#include <QCursor>
#include <QTest>

namespace {

QByteArray gazeAt(double x, double y, bool valid = true) {
    return QString("<REC FPOGX=\"%1\" FPOGY=\"%2\" FPOGV=\"%3\" />").arg(x).arg(y).arg(valid ? 1 : 0).toLatin1();
}

}  // namespace

/// One connection to the tracker's server, byte for byte, and what the gaze does to the desktop.
class TestDeviceSession : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void talks_to_the_server_from_start_to_close();
    void gaze_moves_the_cursor_between_two_presses_of_F10();
    void starts_without_a_server();

private:
    /// Starts the program and has it know the screen's size.
    void connectProgram();
    /// Whether a look at another place takes the cursor there; asked when the window shows that place.
    [[nodiscard]] bool cursorFollows(bool valid = true);

    std::unique_ptr<Home> home_;
    std::unique_ptr<Program> program_;
    std::unique_ptr<ScriptedServer> server_;
    QByteArray conversation_;
    int looks_ = 0;
};

void TestDeviceSession::init() {
    home_ = std::make_unique<Home>();
    program_ = std::make_unique<Program>(*home_);
    server_ = std::make_unique<ScriptedServer>();
}

void TestDeviceSession::cleanup() {
    program_.reset();
    server_.reset();
}

void TestDeviceSession::connectProgram() {
    conversation_ = wire::enableData;
    QVERIFY(server_->listen());
    QVERIFY(program_->startWindow());
    QTRY_COMPARE_WITH_TIMEOUT(server_->received(), conversation_, patienceMs);

    server_->send(gazeAt(0.9, 0.9));
    conversation_ += wire::askScreenSize;
    QTRY_COMPARE_WITH_TIMEOUT(server_->received(), conversation_, patienceMs);
    server_->send(QByteArray(wire::screenSize).trimmed());
}

bool TestDeviceSession::cursorFollows(bool valid) {
    constexpr int places = 16;  // a power of two, so that the fractions are exact
    const double place = static_cast<double>(++looks_ % places) / places;
    const QPoint away(5, 5);
    const QPoint awaited(static_cast<int>(1920 * place), 540);
    QCursor::setPos(away);
    // Asked, so that this move is done before the program's.
    if (QCursor::pos() != away)
        return false;
    server_->send(gazeAt(place, 0.5, valid));
    const bool seen = desktop::waitFor(QString::asprintf("x:%6.1f%%", 100 * place));
    return seen && QCursor::pos() == awaited;
}

void TestDeviceSession::talks_to_the_server_from_start_to_close() {
    connectProgram();
    if (QTest::currentTestFailed())
        return;
    QTRY_VERIFY_WITH_TIMEOUT(desktop::showsIndicator(0xff33cc00), patienceMs);
    QVERIFY(desktop::click("Calibrate"));
    conversation_ += wire::calibrate;
    QTRY_COMPARE_WITH_TIMEOUT(server_->received(), conversation_, patienceMs);

    QCOMPARE(program_->close(), 0);
    conversation_ += wire::disableData;
    QTRY_VERIFY_WITH_TIMEOUT(!server_->isConnected(), patienceMs);
    QCOMPARE(server_->received(), conversation_);
    QCOMPARE(program_->complaints(), QStringList());
    QVERIFY2(home_->readLogFile().contains("Z debug ocela.gazepoint [1] GazePoint connected\n"),
             qPrintable(home_->readLogFile()));
}

void TestDeviceSession::gaze_moves_the_cursor_between_two_presses_of_F10() {
    connectProgram();
    if (QTest::currentTestFailed())
        return;
    QVERIFY(!cursorFollows());
    desktop::press("F10");
    // The key comes by another way than the gaze does.
    QVERIFY(QTest::qWaitFor([this] { return cursorFollows(); }, patienceMs));
    QVERIFY(!cursorFollows(false));
    desktop::keep(desktop::screenshot(), "gaze-controls-cursor");
    desktop::press("F10");
    QVERIFY(QTest::qWaitFor([this] { return !cursorFollows(); }, patienceMs));
    QCOMPARE(program_->close(), 0);
    QCOMPARE(program_->complaints(), QStringList());
}

void TestDeviceSession::starts_without_a_server() {
    QVERIFY(program_->startWindow());
    QVERIFY(desktop::waitFor("Start record"));
    QVERIFY(desktop::showsIndicator(0xffcc3300));
    QVERIFY(desktop::shows("gazepoint"));
    QCOMPARE(program_->close(), 0);
    QCOMPARE(program_->complaints(), QStringList());
}

OCELA_TEST(TestDeviceSession)
#include "tst_device_session.moc"
