#include "support/redirected.h"
#include "support/test_main.h"
#include "toolkit/platform/console.h"

#include <QTemporaryFile>
#include <cstdio>
#include <pty.h>

class TestConsole : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void reads_a_character_from_a_terminal_of_another_session();
    void answers_only_with_input_that_is_there();
    void output_without_a_reader_does_not_block();
    void output_does_not_exceed_the_file_limit();
    void repeated_output_to_a_pipe_is_limited();
};

void TestConsole::reads_a_character_from_a_terminal_of_another_session() {
    int ends[2];
    QCOMPARE(openpty(&ends[0], &ends[1], nullptr, nullptr, nullptr), 0);
    {
        const Redirected typed(STDIN_FILENO, ends[1]);
        QVERIFY(console::canAnswer());
        QCOMPARE(write(ends[0], "1\n", 2), ssize_t(2));
        QCOMPARE(console::readCharacter(), int('1'));
    }
    ::close(ends[0]);
    ::close(ends[1]);
}

void TestConsole::answers_only_with_input_that_is_there() {
    int ends[2];
    QCOMPARE(pipe(ends), 0);
    {
        const Redirected typed(STDIN_FILENO, ends[0]);
        QVERIFY(!console::canAnswer());  // nothing is written yet
        QCOMPARE(write(ends[1], "1", 1), ssize_t(1));
        QVERIFY(console::canAnswer());
        QCOMPARE(console::readCharacter(), int('1'));
        ::close(ends[1]);
        QVERIFY(!console::canAnswer());
    }
    ::close(ends[0]);
    QFile nothing("/dev/null");
    QVERIFY(nothing.open(QIODevice::ReadOnly));
    const Redirected typed(STDIN_FILENO, nothing.handle());
    QVERIFY(!console::canAnswer());
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

void TestConsole::repeated_output_to_a_pipe_is_limited() {
    int ends[2];
    QCOMPARE(pipe(ends), 0);
    {
        const Redirected output(STDOUT_FILENO, ends[1]);
        for (int i = 0; i < 5000; ++i)
            console::print("a\n");
        console::print("b\n");
    }
    ::close(ends[1]);
    QFile reader;
    QVERIFY(reader.open(ends[0], QIODevice::ReadOnly, QFile::AutoCloseHandle));
    const QByteArray printed = reader.readAll();
    QCOMPARE(printed.count("a\n"), 1001);
    QCOMPARE(printed.count("b\n"), 1);
}

OCELA_TEST(TestConsole)
#include "tst_console_linux.moc"
