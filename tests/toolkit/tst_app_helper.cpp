#include "support/test_main.h"
#include "toolkit/app_helper.h"

#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

namespace {

/// A name that no other run of these tests has at the same time: the list is that of the whole machine.
QString ownName(const QString &name) {
    return QString::number(QCoreApplication::applicationPid()) + name;
}

int count(const QString &name) {
    return static_cast<int>(AppHelper::getRunningApps().count(name));
}

/// A program of the system that waits for input.
QString waitingProgram() {
    const QString cat = QStandardPaths::findExecutable("cat");
    return cat.isEmpty() ? QStandardPaths::findExecutable("cmd") : cat;
}

/// A running program under a name of our choice; ends with the object.
class NamedProgram {
public:
    explicit NamedProgram(const QString &name) : file_(dir_.filePath(name)) {
        QFile::copy(waitingProgram(), file_);
        process_.start(file_, QStringList());
        process_.waitForStarted();
    }
    ~NamedProgram() { end(); }
    NamedProgram(const NamedProgram &) = delete;
    NamedProgram &operator=(const NamedProgram &) = delete;

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
    void lists_each_process_by_its_file_name();
};

void TestAppHelper::lists_each_process_by_its_file_name() {
    // Longer than the 15 bytes the kernel keeps, with what a careless parser stumbles over.
    const QString name = ownName(" tracker (test) program.EXE");
    NamedProgram first(name), second(name);
    QTRY_COMPARE(count(name), 2);
    QFile::remove(first.file());  // as an update of a running program does, where the system lets it
    QCOMPARE(count(name), 2);
    first.end();
    QCOMPARE(count(name), 1);
}

OCELA_TEST(TestAppHelper)
#include "tst_app_helper.moc"
