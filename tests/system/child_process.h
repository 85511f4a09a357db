#pragma once

#include <QProcess>

/// A program that the test starts. It is killed with the test, even if the test crashes, so that no later test finds a
/// port or the program's name in use. Standard output and standard error are one stream.
class ChildProcess : public QProcess {
    Q_OBJECT

public:
    ChildProcess();
    ~ChildProcess() override;

    /// Returns the whole output so far.
    [[nodiscard]] QString log();
    [[nodiscard]] bool waitForLog(const QString &text);
    /// Waits until the program has ended and returns its exit code, or -1 after a timeout or a crash.
    [[nodiscard]] int waitForExitCode();

protected:
    void setupChildProcess() override;

private:
    QByteArray output_;
};
