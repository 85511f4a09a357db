#pragma once

#include <QProcess>

/// A program that this test starts. It ends with the test, however the test ends, so that nobody finds the
/// port or the program's name taken afterwards. Error output and standard output arrive as one stream.
class ChildProcess : public QProcess {
    Q_OBJECT

public:
    ChildProcess();
    ~ChildProcess() override;

    /// Everything that it has written so far.
    [[nodiscard]] QString log();
    [[nodiscard]] bool waitForLog(const QString &text);
    /// Waits for its end; -1 when it does not end or crashes.
    [[nodiscard]] int waitForExitCode();

protected:
    void setupChildProcess() override;

private:
    QByteArray output_;
};
