#include "support/test_main.h"
#include "system/desktop.h"
#include "system/http_client.h"
#include "system/program.h"
#include "system/server.h"
#include "system/timeout.h"

#include <QFile>
#include <QRegularExpression>
#include <QTest>

/// The HTTP API of the running program.
class TestHttpApi : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void runs_the_documented_examples_data();
    void runs_the_documented_examples();
    void runs_while_its_port_is_in_use();

private:
    std::unique_ptr<Home> home_;
    std::unique_ptr<QTemporaryDir> folder_;  ///< the working directory of the program
    std::unique_ptr<Program> program_;
    std::unique_ptr<Simulator> simulator_;
    HttpClient client_;
};

void TestHttpApi::init() {
    home_ = std::make_unique<Home>();
    folder_ = std::make_unique<QTemporaryDir>();
    program_ = std::make_unique<Program>(*home_);
    program_->process().setWorkingDirectory(folder_->path());
    simulator_ = std::make_unique<Simulator>();
}

void TestHttpApi::cleanup() {
    program_.reset();
    simulator_.reset();
    client_.forgetConnections();
}

void TestHttpApi::runs_the_documented_examples_data() {
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("language");
    QTest::addColumn<QString>("output");
    QTest::newRow("curl") << "bash -e -c"
                          << "sh"
                          << R"(^\{"hello".*"result":true.*\}\{"result":true,"sample":\{.*\}$)";
    QTest::newRow("Python") << "python3 -c"
                            << "python"
                            << "^(\\{'result': True.*\\}\n){2}Timestamp,Time,.*\n$";
    QTest::newRow("JavaScript") << "node -e"
                                << "js"
                                << "^((true|false) -?[0-9.]+ -?[0-9.]+\n){5}$";
}

void TestHttpApi::runs_the_documented_examples() {
    QFETCH(const QString, command);
    QFETCH(const QString, language);
    QFETCH(const QString, output);
    QFile document(OCELA_SOURCE_DIR "/docs/http-api.md");
    QVERIFY(document.open(QIODevice::ReadOnly));
    const QRegularExpression block(
        "^```" + language + "\n(.*?)^```",
        QRegularExpression::MultilineOption | QRegularExpression::DotMatchesEverythingOption);
    QRegularExpressionMatchIterator examples = block.globalMatch(QString::fromUtf8(document.readAll()));
    QVERIFY(examples.hasNext());

    QVERIFY(simulator_->listen({}));
    QVERIFY(program_->startWindow());
    QTRY_VERIFY_WITH_TIMEOUT(client_.lastSample()["timestamp"].toDouble() > 0, timeoutMs);
    while (examples.hasNext()) {
        QProcess process;
        process.setWorkingDirectory(folder_->path());
        QStringList arguments = command.split(' ') << examples.next().captured(1);
        const QString program = arguments.takeFirst();
        process.start(program, arguments);
        QVERIFY(QTest::qWaitFor([&] { return process.state() == QProcess::NotRunning; }, timeoutMs));
        const QString printed = QString::fromUtf8(process.readAllStandardOutput());
        QVERIFY2(process.exitCode() == 0, process.readAllStandardError());
        QVERIFY2(QRegularExpression(output).match(printed).hasMatch(), qPrintable(printed));
    }
}

void TestHttpApi::runs_while_its_port_is_in_use() {
    QTcpServer other;
    QVERIFY(other.listen(QHostAddress::Any, apiPort));
    QVERIFY(program_->startWindow());
    QVERIFY(!desktop::waitFor("Start record").isEmpty());
    QTRY_COMPARE_WITH_TIMEOUT(program_->problems().size(), 1, timeoutMs);  // logged after the window opens
    QVERIFY2(program_->problems().first().contains("port 3735"), qPrintable(program_->problems().first()));
    QCOMPARE(program_->close(), 0);
}

OCELA_TEST(TestHttpApi)
#include "tst_http_api.moc"
