#include "support/test_main.h"
#include "toolkit/connection_helper.h"

#include <QTest>

class TestConnectionHelper : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void severs_them_together();
};

void TestConnectionHelper::severs_them_together() {
    QObject first, second;
    int calls = 0;
    ConnectionHelper cleared;
    {
        ConnectionHelper gone;
        cleared << connect(&first, &QObject::objectNameChanged, this, [&] { ++calls; });
        gone << connect(&second, &QObject::objectNameChanged, this, [&] { ++calls; });
        first.setObjectName("a");
        second.setObjectName("a");
    }
    cleared.clear();
    first.setObjectName("b");
    second.setObjectName("b");
    QCOMPARE(calls, 2);
}

OCELA_TEST(TestConnectionHelper)
#include "tst_connection_helper.moc"
