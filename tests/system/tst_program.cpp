#include "support/test_main.h"
#include "system/desktop.h"
#include "system/program.h"
#include "system/timeout.h"

#include <QFile>
#include <QTest>

namespace {

const QString alreadyRunning = QStringLiteral("Ocela уже запущена");

}  // namespace

/// Start, settings and end of the program, without a tracker.
class TestProgram : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void refuses_a_second_instance();
    void ignores_start_hidden_without_a_tray();
    void starts_with_defaults_if_the_settings_file_is_damaged();

private:
    std::unique_ptr<Home> home_;
    std::unique_ptr<Program> program_;
};

void TestProgram::init() {
    home_ = std::make_unique<Home>();
    program_ = std::make_unique<Program>(*home_);
}

void TestProgram::cleanup() {
    program_.reset();
}

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

void TestProgram::ignores_start_hidden_without_a_tray() {
    home_->writeSettings({{"HideWindowOnStart", "true"}});
    QVERIFY(program_->startWindow());
    QCOMPARE(program_->close(), 0);
}

void TestProgram::starts_with_defaults_if_the_settings_file_is_damaged() {
    const QByteArray contents = "<settings><property name=\"Language\">ru_RU</prop";
    home_->writeSettings(contents);
    QVERIFY(program_->startWindow());
    QVERIFY(!desktop::waitFor("Start record").isEmpty());

    QFile damaged(home_->settingsFile() + ".damaged");
    QVERIFY(damaged.open(QIODevice::ReadOnly));
    QCOMPARE(damaged.readAll(), contents);
    QCOMPARE(program_->close(), 0);
    QCOMPARE(program_->problems().size(), 1);
    QVERIFY2(program_->problems().first().contains(home_->settingsFile() + ".damaged"),
             qPrintable(program_->problems().first()));
}

OCELA_TEST(TestProgram)
#include "tst_program.moc"
