#include "support/test_main.h"
#include "system/program.h"
#include "system/server.h"
#include "system/timeout.h"

/// The API for programs of the running program.
class TestProgramApi : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void answers_match_the_description_also_after_a_restart();
};

namespace {

/// Runs the checks with `arguments`. Stores the text that they print in `output`.
bool check(const QStringList &arguments, QString &output) {
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start("python3", QStringList(OCELA_SOURCE_DIR "/tests/system/check_program_api.py") + arguments);
    const bool isFinished = QTest::qWaitFor([&] { return process.state() == QProcess::NotRunning; }, 4 * timeoutMs);
    output = QString::fromUtf8(process.readAll());
    return isFinished && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
}

}  // namespace

void TestProgramApi::answers_match_the_description_also_after_a_restart() {
    const Home home("eyetech");
    Simulator simulator;
    QVERIFY(simulator.listen({"--rate", "150"}));
    QString output;
    {
        Program program(home);
        QVERIFY(program.startWindow());
        QVERIFY2(check({home.recordsFolder()}, output), qPrintable(output));
        QCOMPARE(program.close(), 0);
    }
    const QString eventId = output.trimmed();
    Program program(home);
    QVERIFY(program.startWindow());
    QVERIFY2(check({home.recordsFolder(), eventId}, output), qPrintable(output));
    QCOMPARE(program.close(), 0);
}

OCELA_TEST(TestProgramApi)
#include "tst_program_api.moc"
