#include "support/test_main.h"
#include "toolkit/connection_helper.h"

#include <QTest>
#include <QTimer>

class TestConnectionHelper : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void severs_all_connections_together();
    void severs_them_when_it_goes();
};

void TestConnectionHelper::severs_all_connections_together() {
    QObject first, second;
    int calls = 0;
    ConnectionHelper connections;
    connections << connect(&first, &QObject::objectNameChanged, this, [&] { ++calls; })
                << connect(&second, &QObject::objectNameChanged, this, [&] { ++calls; });
    connections.clear();
    first.setObjectName("a");
    second.setObjectName("b");
    QCOMPARE(calls, 0);
}

void TestConnectionHelper::severs_them_when_it_goes() {
    QObject sender;
    int calls = 0;
    {
        ConnectionHelper connections;
        connections << connect(&sender, &QObject::objectNameChanged, this, [&] { ++calls; });
        sender.setObjectName("a");
    }
    sender.setObjectName("b");
    QCOMPARE(calls, 1);
}

OCELA_TEST(TestConnectionHelper)
#include "tst_connection_helper.moc"
