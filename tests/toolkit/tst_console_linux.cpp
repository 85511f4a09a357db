#include "support/redirected.h"
#include "support/test_main.h"
#include "toolkit/console.h"

#include <QTemporaryFile>
#include <QTest>
#include <cstdio>
#include <pty.h>

class TestConsole : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void reads_from_a_terminal_of_another_session();
    void nobody_reading_the_output_holds_nothing_up_data();
    void nobody_reading_the_output_holds_nothing_up();
    void output_does_not_fill_the_disk();
};

void TestConsole::reads_from_a_terminal_of_another_session() {
    int ends[2];
    QCOMPARE(openpty(&ends[0], &ends[1], nullptr, nullptr, nullptr), 0);
    {
        const Redirected typed(STDIN_FILENO, ends[1]);
        QCOMPARE(write(ends[0], "1\n", 2), ssize_t(2));
        QCOMPARE(console::readCharacter(), int('1'));
    }
    ::close(ends[0]);
    ::close(ends[1]);
}

void TestConsole::nobody_reading_the_output_holds_nothing_up_data() {
    QTest::addColumn<bool>("terminal");
    QTest::newRow("a pipe") << false;
    QTest::newRow("a terminal") << true;
}

void TestConsole::nobody_reading_the_output_holds_nothing_up() {
    QFETCH(const bool, terminal);
    int ends[2];
    QCOMPARE(terminal ? openpty(&ends[0], &ends[1], nullptr, nullptr, nullptr) : pipe(ends), 0);
    {
        const Redirected full(STDOUT_FILENO, ends[1]);
        const Redirected log(STDERR_FILENO, ends[1]);
        console::prepare();
        for (int i = 0; i < 10000; ++i)
            console::print("No devices present.\n");
        std::fputs("the log\n", stderr);
    }
    ::close(ends[0]);
    ::close(ends[1]);
}

void TestConsole::output_does_not_fill_the_disk() {
    constexpr qint64 most = 10 << 20;
    QTemporaryFile file;
    QVERIFY(file.open());
    {
        const Redirected output(STDOUT_FILENO, file.handle());
        console::print("a line\n");
        QVERIFY(file.size() > 0);
        QVERIFY(file.resize(most));
        console::print("a line\n");
    }
    QCOMPARE(file.size(), most);
}

OCELA_TEST(TestConsole)
#include "tst_console_linux.moc"
