#include "support/test_main.h"
#include "toolkit/platform/app_helper.h"

#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

namespace {

int count(const QString &name) {
    return static_cast<int>(AppHelper::getRunningApps().count(name));
}

/// Returns a system program that waits for input.
QString waitingProgram() {
    const QString cat = QStandardPaths::findExecutable("cat");
    return cat.isEmpty() ? QStandardPaths::findExecutable("cmd") : cat;
}

/// Runs a program under the given name for the lifetime of this object.
class NamedProgram {
public:
    explicit NamedProgram(const QString &name) : file_(dir_.filePath(name)) {
        QFile::copy(waitingProgram(), file_);
        process_.start(file_, QStringList());
        process_.waitForStarted();
    }
    ~NamedProgram() { end(); }
    Q_DISABLE_COPY(NamedProgram)

    QString file() const { return file_; }
    void end() {
        process_.closeWriteChannel();
        process_.waitForFinished();
    }

private:
    QTemporaryDir dir_;
    QString file_;
    QProcess process_;
};

}  // namespace

class TestAppHelper : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void lists_each_process_by_its_file_name() {
        // Unique, longer than the 15 bytes of the kernel's name, and with parentheses.
        const QString name = QString("%1 tracker (test) program.EXE").arg(QCoreApplication::applicationPid());
        NamedProgram first(name), second(name);
        QTRY_COMPARE(count(name), 2);
        QFile::remove(first.file());  // like an update; fails on Windows
        QCOMPARE(count(name), 2);
        first.end();
        QCOMPARE(count(name), 1);
    }
};

OCELA_TEST(TestAppHelper)
#include "tst_app_helper.moc"
