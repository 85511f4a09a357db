#include "support/test_main.h"
#include "system/desktop.h"
#include "system/patience.h"
#include "system/program.h"

#include <QFile>
#include <QTest>

namespace {

const QString alreadyRuns = QStringLiteral("Ocela уже запущена");

}  // namespace

/// Start, settings and end of the program.
class TestProgramLife : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void refuses_a_second_instance();
    void switches_the_language_at_once_and_keeps_it();
    void shows_a_hidden_window_where_there_is_no_tray();
    void starts_with_defaults_from_a_damaged_settings_file();

private:
    std::unique_ptr<Home> home_;
    std::unique_ptr<Program> program_;
};

void TestProgramLife::init() {
    home_ = std::make_unique<Home>();
    program_ = std::make_unique<Program>(*home_);
}

void TestProgramLife::cleanup() {
    program_.reset();
}

void TestProgramLife::refuses_a_second_instance() {
    home_->writeSettings({{"Language", "ru_RU"}});
    QVERIFY(program_->startWindow());

    Program second(*home_);
    second.start();
    QVERIFY2(desktop::waitFor(alreadyRuns, desktop::Look::Plain), qPrintable(second.process().log()));
    desktop::keep(desktop::screenshot(), "second-instance");
    const QByteArray box = second.window("");
    QVERIFY(!box.isEmpty());
    QVERIFY(second.window().isEmpty());
    desktop::press("Return", box);
    // What a shell sees of -1.
    QCOMPARE(second.process().waitForExitCode(), 255);
    QCOMPARE(second.complaints(), QStringList());
    // The log file is the first one's alone.
    QCOMPARE(home_->readLogFile().count(" Ocela 1."), 1);

    QVERIFY(!program_->window().isEmpty());
    QCOMPARE(program_->close(), 0);
}

void TestProgramLife::switches_the_language_at_once_and_keeps_it() {
    home_->writeSettings({{"Language", "en_US"}});
    QVERIFY(program_->startWindow());
    QVERIFY(desktop::click("Settings"));
    QVERIFY(desktop::waitFor("Language"));
    desktop::keep(desktop::screenshot(), "settings-english");

    QVERIFY(desktop::click("English"));
    QVERIFY(desktop::click("Русский"));
    QVERIFY(desktop::waitFor("Папка записей"));
    QVERIFY(!desktop::shows("Language"));
    desktop::keep(desktop::screenshot(), "settings-russian");
    QCOMPARE(program_->close(), 0);
    QCOMPARE(program_->complaints(), QStringList());

    Program again(*home_);
    QVERIFY(again.startWindow());
    QVERIFY(desktop::click("Настройки"));
    QVERIFY(desktop::click("Русский"));
    QVERIFY(desktop::click("English"));
    QVERIFY(desktop::waitFor("Language"));
    QVERIFY(!desktop::shows("Язык"));
    QCOMPARE(again.close(), 0);
    QCOMPARE(again.complaints(), QStringList());
}

void TestProgramLife::shows_a_hidden_window_where_there_is_no_tray() {
    home_->writeSettings({{"HideWindowOnStart", "true"}});
    QVERIFY(program_->startWindow());
    QCOMPARE(program_->close(), 0);
}

void TestProgramLife::starts_with_defaults_from_a_damaged_settings_file() {
    const QByteArray contents = "<settings><property name=\"Language\">ru_RU</prop";
    home_->writeSettings(contents);
    QVERIFY(program_->startWindow());
    QVERIFY(desktop::waitFor("Start record"));

    QFile damaged(home_->settingsFile() + ".damaged");
    QVERIFY(damaged.open(QIODevice::ReadOnly));
    QCOMPARE(damaged.readAll(), contents);
    QCOMPARE(program_->close(), 0);
    QCOMPARE(program_->complaints().size(), 1);
    QVERIFY2(program_->complaints().first().contains(home_->settingsFile() + ".damaged"),
             qPrintable(program_->complaints().first()));
}

OCELA_TEST(TestProgramLife)
#include "tst_program_life.moc"
