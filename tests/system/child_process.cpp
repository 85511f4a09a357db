#include "system/child_process.h"

#include "system/timeout.h"

#include <QTest>
#include <csignal>
#include <sys/prctl.h>

ChildProcess::ChildProcess() {
    setProcessChannelMode(MergedChannels);
}

ChildProcess::~ChildProcess() {
    if (state() == NotRunning)
        return;
    kill();
    waitForFinished();
}

void ChildProcess::setupChildProcess() {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
}

QString ChildProcess::log() {
    output_ += readAll();
    return QString::fromUtf8(output_);
}

bool ChildProcess::waitForLog(const QString &text) {
    return QTest::qWaitFor([&] { return log().contains(text); }, timeoutMs);
}

int ChildProcess::waitForExitCode() {
    const bool ended = QTest::qWaitFor([this] { return state() == NotRunning; }, timeoutMs);
    return ended && exitStatus() == NormalExit ? exitCode() : -1;
}
