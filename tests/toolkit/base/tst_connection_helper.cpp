#include "support/test_main.h"
#include "toolkit/base/connection_helper.h"

class TestConnectionHelper : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void disconnects_all_connections() {
        QObject first, second;
        int calls = 0;
        ConnectionHelper cleared;
        {
            ConnectionHelper destroyed;
            cleared << connect(&first, &QObject::objectNameChanged, this, [&] { ++calls; });
            destroyed << connect(&second, &QObject::objectNameChanged, this, [&] { ++calls; });
            first.setObjectName("a");
            second.setObjectName("a");
        }
        cleared.clear();
        first.setObjectName("b");
        second.setObjectName("b");
        QCOMPARE(calls, 2);
    }
};

OCELA_TEST(TestConnectionHelper)
#include "tst_connection_helper.moc"
