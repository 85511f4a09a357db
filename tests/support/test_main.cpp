#include "support/test_main.h"

#include <QApplication>
#include <QFile>
#include <QTemporaryDir>
#include <cstdio>
#include <memory>
#include <vector>

namespace {

std::vector<test_support::Factory> &factories() {
    static std::vector<test_support::Factory> list;
    return list;
}

/// Puts every standard path below `home`, so that tests do not touch the user's files.
void usePrivateFolders(const QString &home) {
    qputenv("HOME", home.toLocal8Bit());
    qputenv("XDG_RUNTIME_DIR", home.toLocal8Bit());
    for (const char *name : {"XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME"})
        qunsetenv(name);
}

/// The offscreen platform warns about unsupported functions. These warnings are not errors of the tested code.
bool isPlatformNoise(const QByteArray &line) {
    return line.contains("This plugin does not support") || line.contains("systemTrayWindowChanged(QScreen*)");
}

int unexpectedWarnings(const QString &logFile) {
    QFile log(logFile);
    if (!log.open(QIODevice::ReadOnly))
        return 1;
    int count = 0;
    for (const QByteArray &line : log.readAll().split('\n')) {
        if (!line.startsWith("QWARN") || isPlatformNoise(line))
            continue;
        std::fprintf(stderr, "unexpected warning: %s\n", line.constData());
        ++count;
    }
    return count;
}

int runClass(QObject *test, QStringList arguments, const QString &logFile) {
    arguments += {"-o", "-,txt", "-o", logFile + ",txt"};
    const int failures = QTest::qExec(test, arguments);
    return failures + unexpectedWarnings(logFile);
}

}  // namespace

bool test_support::registerTest(Factory factory) {
    factories().push_back(factory);
    return true;
}

int main(int argc, char *argv[]) {
    // On Windows, Qt would write the results to the debugger.
    qputenv("QT_FORCE_STDERR_LOGGING", "1");
    const QTemporaryDir home;
    usePrivateFolders(home.path());
    QApplication application(argc, argv);
    application.setQuitOnLastWindowClosed(false);

    int failures = factories().empty() ? 1 : 0;
    int number = 0;
    for (const test_support::Factory factory : factories()) {
        const std::unique_ptr<QObject> test(factory());
        const QString log = home.filePath(QString("log%1.txt").arg(++number));
        failures += runClass(test.get(), application.arguments(), log);
    }
    return failures == 0 ? 0 : 1;
}
