#include "http/http_session_store.h"
#include "support/test_main.h"

#include <QSignalSpy>
#include <QTest>

/// Sessions: shared by their handles, dropped by their store when nobody uses them.
class TestHttpSessions : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void handlesShareOneRecord();
    void unusedSessionsExpire();
};

void TestHttpSessions::handlesShareOneRecord() {
    HttpSession first("id", 5);
    HttpSession second;
    second = HttpSession(first);
    second.setValue("key", 1);
    first = HttpSession("other", 6);
    QCOMPARE(second.getId(), QByteArray("id"));
    QCOMPARE(second.getLastAccess(), 5);
    QCOMPARE(second.value("key"), QVariant(1));
    QVERIFY(!first.value("key").isValid());
    QTest::ignoreMessage(QtDebugMsg, "HttpSession: deleting data");
    second = HttpSession();
}

void TestHttpSessions::unusedSessionsExpire() {
    qint64 now = 1000;
    HttpSessionStore store(100, [&now] { return now; });
    QSignalSpy deleted(&store, &HttpSessionStore::sessionDeleted);
    // A receiver that uses the store is not locked out.
    connect(&store, &HttpSessionStore::sessionDeleted, this,
            [&store](const QByteArray &id) { QVERIFY(store.getSession(id).isNull()); });
    const QByteArray unused = store.createSession().getId();
    const QByteArray used = store.createSession().getId();
    QVERIFY(used != unused);

    now += 100;
    store.sessionTimerEvent();
    QCOMPARE(deleted.count(), 0);
    QCOMPARE(store.getSession(used).getLastAccess(), now);
    now += 1;
    store.sessionTimerEvent();
    QCOMPARE(deleted, QList<QVariantList>{{unused}});
    QCOMPARE(store.getSession(used).getId(), used);
}

OCELA_TEST(TestHttpSessions)
#include "tst_http_sessions.moc"
