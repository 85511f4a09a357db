#include "support/file_content.h"
#include "support/test_main.h"
#include "system/desktop.h"
#include "system/http_client.h"
#include "system/program.h"
#include "system/timeout.h"

#include <QFile>
#include <QFileInfo>
#include <QTcpServer>
#include <csignal>

namespace {

const QString alreadyRunning = QStringLiteral("Ocela уже запущена");

}  // namespace

/// Start, settings and end of the program, without a tracker.
class TestProgram : public ProgramTest {
    Q_OBJECT

private Q_SLOTS:
    void refuses_a_second_instance();
    void refusal_ends_with_the_other_instance_and_blocks_nobody();
    void one_of_two_instances_that_start_together_runs();
    void option_opens_the_dashboard();
    void ignores_start_hidden_without_a_tray();
    void runs_while_its_port_is_in_use();
    void keeps_a_settings_file_that_cannot_be_read();
};

void TestProgram::refuses_a_second_instance() {
    home_->writeSettings({{"Language", "ru_RU"}});
    QVERIFY(program_->startWindow());

    Program second(*home_);
    second.start();
    QVERIFY2(!desktop::waitFor(alreadyRunning, desktop::Look::Plain).isEmpty(), qPrintable(second.process().log()));
    desktop::save(desktop::screenshot(), "second-instance");
    const QByteArray box = second.window("");
    QVERIFY(!box.isEmpty());
    QVERIFY(second.window().isEmpty());
    desktop::press("Return", box);
    QCOMPARE(second.process().waitForExitCode(), 255);  // -1 as the system reports it
    QCOMPARE(second.problems(), QStringList());
    // Only the first instance writes to the log file.
    QCOMPARE(home_->readLogFile().count(" Ocela 1."), 1);

    QVERIFY(!program_->window().isEmpty());
    QCOMPARE(program_->close(), 0);
}

void TestProgram::refusal_ends_with_the_other_instance_and_blocks_nobody() {
    QVERIFY(program_->startWindow());
    const QByteArray halfWritten = "<settings><prop";
    home_->writeSettings(halfWritten);
    Program refused(*home_);
    Program stopped(*home_);
    for (Program *instance : {&refused, &stopped}) {
        instance->start();
        QTRY_VERIFY_WITH_TIMEOUT(!instance->window("").isEmpty(), timeoutMs);
    }
    QCOMPARE(home_->readSettings(), QString(halfWritten));

    QCOMPARE(::kill(static_cast<pid_t>(stopped.process().processId()), SIGSTOP), 0);
    program_->process().kill();
    QCOMPARE(refused.process().waitForExitCode(), 255);
    QCOMPARE(refused.problems(), QStringList());
    home_->writeSettings({{"SelectedTracker", "gazepoint"}});
    Program next(*home_);
    QVERIFY(next.startWindow());
    QCOMPARE(next.close(), 0);
}

void TestProgram::one_of_two_instances_that_start_together_runs() {
    Program second(*home_);
    program_->start();
    second.start();
    Program *running = nullptr;
    const auto hasWindow = [&] {
        running = program_->window().isEmpty() ? &second : program_.get();
        return !running->window().isEmpty();
    };
    QTRY_VERIFY_WITH_TIMEOUT(hasWindow(), timeoutMs);
    Program &refused = running == &second ? *program_ : second;
    QTRY_VERIFY_WITH_TIMEOUT(!refused.window("").isEmpty(), timeoutMs);
    QVERIFY(refused.window().isEmpty());
    QCOMPARE(running->close(), 0);
    QCOMPARE(refused.process().waitForExitCode(), 255);
}

/// `xdg-open` starts the browser of the user.
void TestProgram::option_opens_the_dashboard() {
    const QTemporaryDir folder;
    const QString opener = folder.filePath("xdg-open");
    const QString opened = folder.filePath("opened");
    // The server must answer at once.
    const QByteArray script = "#!/bin/sh\ncurl --silent --fail \"$1\" >/dev/null && echo \"$1\" >>'";
    QVERIFY(writeFile(opener, script + opened.toUtf8() + "'\n"));
    QVERIFY(QFile::setPermissions(opener, QFile::ReadOwner | QFile::ExeOwner));
    Program second(*home_);
    for (Program *instance : {program_.get(), &second}) {
        instance->setVariable("PATH", folder.path() + ':' + qEnvironmentVariable("PATH"));
        instance->process().setArguments({"--dashboard"});
        instance->start();
    }
    // The refused instance waits for the server of the other one.
    const QByteArray expected = QByteArray("http://localhost:3735/\n").repeated(2);
    QTRY_COMPARE_WITH_TIMEOUT(readFile(opened), expected, timeoutMs);
    QTRY_VERIFY_WITH_TIMEOUT(program_->isRunning() != second.isRunning(), timeoutMs);
    Program &running = second.isRunning() ? second : *program_;
    Program &refused = second.isRunning() ? *program_ : second;
    QCOMPARE(refused.process().waitForExitCode(), 0);
    QVERIFY(HttpClient().ask("/api/v1/state").contains("version"));
    QCOMPARE(running.close(), 0);

    QTcpServer other;
    QVERIFY(other.listen(QHostAddress::Any, apiPort));
    program_->process().setArguments({"--dashboard"});
    program_->start();
    QTRY_VERIFY_WITH_TIMEOUT(!program_->window().isEmpty(), timeoutMs);
    QCOMPARE(program_->close(), 0);
    QVERIFY2(readFile(opened) == expected, "a page of another program was opened");
}

void TestProgram::ignores_start_hidden_without_a_tray() {
    home_->writeSettings({{"HideWindowOnStart", "true"}});
    QVERIFY(program_->startWindow());
    QCOMPARE(program_->close(), 0);
}

void TestProgram::runs_while_its_port_is_in_use() {
    QTcpServer other;
    QVERIFY(other.listen(QHostAddress::Any, apiPort));
    QVERIFY(program_->startWindow());
    QVERIFY(!desktop::waitFor("Start record").isEmpty());
    QTRY_COMPARE_WITH_TIMEOUT(program_->problems().size(), 1, timeoutMs);  // logged after the window opens
    QVERIFY2(program_->problems().first().contains("port 3735"), qPrintable(program_->problems().first()));
    QCOMPARE(program_->close(), 0);
}

void TestProgram::keeps_a_settings_file_that_cannot_be_read() {
    const QString path = home_->settingsFile();
    QVERIFY(QFile::remove(path));
    QVERIFY(QFile::link("/proc/self/mem", path));  // reading it fails
    QVERIFY(program_->startWindow());
    QVERIFY(!desktop::waitFor("again to use the file.").isEmpty());
    desktop::save(desktop::screenshot(), "unread-settings-message");
    desktop::press("Return", program_->window("^Ocela$"));
    QVERIFY(desktop::choose("eyetech", "gazepoint"));
    QVERIFY(desktop::click("Settings"));
    QVERIFY(!desktop::waitFor("OcelaSettings.xml cannot be read: Input/output error").isEmpty());
    desktop::save(desktop::screenshot(), "unread-settings");
    QCOMPARE(program_->close(), 0);
    QVERIFY(QFileInfo(path).isSymLink());
    QVERIFY(!QFile::exists(path + ".damaged"));
    QCOMPARE(program_->problems().filter("cannot be read").size(), 1);
}

OCELA_TEST(TestProgram)
#include "tst_program.moc"
