#include "support/test_main.h"
#include "system/desktop.h"
#include "system/http_client.h"
#include "system/program.h"
#include "system/timeout.h"

#include <QTcpServer>
#include <QTest>

/// The HTTP API of the running program. See tests/clients for the documented examples.
class TestHttpApi : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void runs_while_its_port_is_in_use();
};

void TestHttpApi::runs_while_its_port_is_in_use() {
    const Home home;
    Program program(home);
    QTcpServer other;
    QVERIFY(other.listen(QHostAddress::Any, apiPort));
    QVERIFY(program.startWindow());
    QVERIFY(!desktop::waitFor("Start record").isEmpty());
    QTRY_COMPARE_WITH_TIMEOUT(program.problems().size(), 1, timeoutMs);  // logged after the window opens
    QVERIFY2(program.problems().first().contains("port 3735"), qPrintable(program.problems().first()));
    QCOMPARE(program.close(), 0);
}

OCELA_TEST(TestHttpApi)
#include "tst_http_api.moc"
