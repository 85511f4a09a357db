#include "support/redirected.h"
#include "support/test_main.h"
#include "toolkit/platform/console.h"

#include <QTemporaryFile>
#include <QTest>
#include <cstdio>
#include <pty.h>

class TestConsole : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void reads_a_character_from_a_terminal_of_another_session();
    void output_without_a_reader_does_not_block();
    void output_does_not_exceed_the_file_limit();
};

void TestConsole::reads_a_character_from_a_terminal_of_another_session() {
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

void TestConsole::output_without_a_reader_does_not_block() {
    for (const bool terminal : {false, true}) {
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
}

void TestConsole::output_does_not_exceed_the_file_limit() {
    constexpr qint64 maxFileBytes = 10 << 20;
    QTemporaryFile file;
    QVERIFY(file.open());
    {
        const Redirected output(STDOUT_FILENO, file.handle());
        console::print("a line\n");
        QVERIFY(file.size() > 0);
        QVERIFY(file.resize(maxFileBytes));
        console::print("a line\n");
    }
    QCOMPARE(file.size(), maxFileBytes);
}

OCELA_TEST(TestConsole)
#include "tst_console_linux.moc"
